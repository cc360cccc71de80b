#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "QEXCore_iOS/Platform/Export.h"
#include "QEXCore_iOS/Platform/Geometry.h"

namespace Platform {

// The sides of a view that give way when what it lies in changes its size, as bits.
enum AutoresizingMask : std::uint32_t {
  kFlexibleWidth = 2,
  kFlexibleHeight = 16,
};

// How a view is made to look; what is not set is as a new view has it.
struct QEXCORE_API ViewLook {
  Rect frame;
  bool isOpaque = true;
  bool hasClearBackground = false;
  std::uint32_t autoresizingMask = 0;
};

// Something that lies over the content of a window. Lives on the main queue: made, used and
// destroyed there. Operations on a view whose window has gone change nothing that can be seen.
class QEXCORE_API View {
 public:
  virtual ~View();

  // Where it lies in its window. While it is animated, where it will come to lie.
  virtual Rect Frame() const = 0;
  virtual void SetFrame(const Rect& frame) = 0;

  // From 0, invisible, to 1.
  virtual void SetAlpha(double alpha) = 0;

  // Takes it out of its window; nothing happens when it is in none.
  virtual void RemoveFromSuperview() = 0;
};

// Where a web view asks before it goes anywhere. The load of the text that the view was given is
// not asked about; links, redirects, forms and new windows are. Called on the main queue.
class QEXCORE_API WebViewDelegate {
 public:
  virtual ~WebViewDelegate();

  // A view of the modern kind is about to go to `url`. `decide` must be called once, on the main
  // queue, during this call or later: true lets it go there.
  virtual void DecidePolicy(const std::string& url,
                            const std::function<void(bool allow)>& decide) = 0;

  // A view of the legacy kind is about to go to `url`; true lets it go there.
  virtual bool ShouldStartLoad(const std::string& url) = 0;

  // The window that the view lay in has gone, and the view with it.
  virtual void DidLoseWindow() = 0;
};

enum class WebViewKind { Modern, Legacy };

struct QEXCORE_API WebViewSettings {
  WebViewKind kind = WebViewKind::Modern;
  ViewLook look;
  bool bounces = true;  // when it is scrolled beyond its end
  // False: its content lies under bars and notches as well.
  bool adjustsContentInset = true;
};

class QEXCORE_API WebView : public View {
 public:
  ~WebView() override;

  // The view does not keep its delegate alive; one that has gone lets nothing pass.
  virtual void SetDelegate(std::weak_ptr<WebViewDelegate> delegate) = 0;

  // Shows `html`; links in it are relative to `baseUrl`.
  virtual void LoadHtml(const std::string& html, const std::string& baseUrl) = 0;
};

// Recognises a gesture on the view that it was added to, and acts on the main queue. Lives there.
class QEXCORE_API GestureRecognizer {
 public:
  virtual ~GestureRecognizer();
};

// One finger, or the pointer with its button down, that moves.
class QEXCORE_API PanGestureRecognizer : public GestureRecognizer {
 public:
  ~PanGestureRecognizer() override;

  // How far the finger has come since the gesture began or the translation was last set.
  virtual Point TranslationInSuperview() const = 0;
  virtual void SetTranslationInSuperview(const Point& translation) = 0;
};

struct QEXCORE_API ImageViewSettings {
  ViewLook look;
  bool scalesToFit = false;  // keeping the aspect ratio
  bool isUserInteractionEnabled = false;
  std::string image;  // the bytes of a PNG file; none is shown when they are not
};

class QEXCORE_API ImageView : public View {
 public:
  ~ImageView() override;

  // The view keeps the recogniser until it goes.
  virtual void AddGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer) = 0;
};

}  // namespace Platform
