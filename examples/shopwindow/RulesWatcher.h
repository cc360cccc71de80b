#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QEXCore_iOS/QEXExtension.h>

// Hears what becomes of the rules: that one fired, that its alert was shown, which button was
// chosen.
class RulesWatcher : public QEXExtension {
 public:
  using Watch = std::function<void(const std::string& rule, const std::string& consequence,
                                   const std::string& outcome)>;

  // Registers the watcher. `watch` is called on the main queue. To be called once.
  static bool Register(Watch watch);

  std::optional<std::string> name() const override { return "shop.rules-watcher"; }
  std::optional<std::string> version() const override { return "1.0.0"; }
  std::shared_ptr<QEXExtension> init() override;
};
