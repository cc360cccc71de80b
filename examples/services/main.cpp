// What a core finds behind its service interfaces on this device, with real files on disk. Run it
// twice: the second run finds what the first one kept.

#include <cstdlib>
#include <ctime>
#include <exception>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "VelmoraCore/DatabaseInterface.h"
#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/Query.h"
#include "VelmoraCore/Variant.h"
#include "bridge/PlatformServices.h"

namespace {

using Velmora::DatabaseInterface;
using Velmora::PlatformServicesInterface;
using Velmora::Query;
using Velmora::Variant;

void ShowJson(const PlatformServicesInterface& services) {
  const auto json = services.GetJsonUtilityService();
  const auto item = json->CreateJsonObject(R"({"sku": "A-17", "price": 19.9, "sizes": [38, 39]})");
  item->PutBoolean("available", true);
  std::cout << "JSON, read, changed and written:\n" << item->ToString() << "\n\n";
}

std::string Now() {
  const std::time_t now = std::time(nullptr);
  std::ostringstream text;
  text << std::put_time(std::gmtime(&now), "%F %T UTC");
  return text.str();
}

void ShowSettings(const PlatformServicesInterface& services) {
  const auto settings = services.GetLocalStorageService()->GetDataStore("visits");
  const int visits = settings->GetInt("count", 0);
  const std::string last = settings->GetString("last", "never");
  std::cout << "settings: runs before this one " << visits << ", the last one: " << last << '\n';
  settings->SetInt("count", visits + 1);
  settings->SetString("last", Now());
}

void ShowDatabase(const PlatformServicesInterface& services) {
  using Type = DatabaseInterface::ColumnDataType;
  using Constraint = DatabaseInterface::ColumnConstraint;
  const auto database = services.GetDatabaseService()->OpenDatabase("orders.db");
  database->CreateTable("orders", {"id", "sku", "price"}, {Type::Integer, Type::Text, Type::Real},
                        {{Constraint::PrimaryKey, Constraint::AutoIncrement}, {}, {}});
  database->Insert("orders",
                   {{"sku", Variant::FromString("A-17")}, {"price", Variant::FromDouble(19.9)}});
  const auto orders = database->RunQuery(std::make_shared<Query>(
      Query("orders", {"id", "sku", "price"}).SetOrderBy("id DESC").SetLimit("3")));
  std::cout << "database: the newest orders\n";
  for (int row = 0; row < orders->GetCount(); ++row, orders->MoveToNext()) {
    std::cout << "  " << orders->GetInt(0) << "  " << orders->GetString(1) << "  "
              << orders->GetDouble(2) << '\n';
  }
}

std::string SettingsFile() {
  const char* data = std::getenv("XDG_DATA_HOME");
  const char* home = std::getenv("HOME");
  const std::string folder = data != nullptr && *data == '/'
                                 ? data
                                 : std::string(home != nullptr ? home : "") + "/.local/share";
  return folder + "/services/user-defaults/standard.db";
}

void ShowWhere(const PlatformServicesInterface& services) {
  std::cout << "databases lie in " << services.GetSystemInfoService()->GetApplicationCacheDir()
            << "\nsettings lie in " << SettingsFile() << '\n';
}

}  // namespace

int main() {
  try {
    const auto services = Velmora::CreateNativePlatformServices();
    ShowJson(*services);
    ShowSettings(*services);
    ShowDatabase(*services);
    ShowWhere(*services);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "services: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
