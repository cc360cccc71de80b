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
#include "VelmoraCore/JsonArray.h"
#include "VelmoraCore/JsonObject.h"
#include "VelmoraCore/PlatformServicesInterface.h"
#include "VelmoraCore/Query.h"
#include "VelmoraCore/SdkError.h"
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

  const auto cart = json->CreateJsonArray(R"([{"sku": "A-17", "count": 1}])");
  const auto other = json->CreateEmptyJsonObject();
  cart->PutJsonObject(0, other->PutString("sku", "B-2")->PutInt("count", 2));
  std::cout << "a JSON array of " << cart->Length() << ", the first of which is put before:\n"
            << cart->ToString() << "\n\n";
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

std::shared_ptr<Velmora::QueryResultInterface> QueryOrders(DatabaseInterface& database) {
  return database.RunQuery(std::make_shared<Query>(
      Query("orders", {"id", "sku", "price"}).SetOrderBy("id DESC").SetLimit("3")));
}

void PrintOrders(DatabaseInterface& database, const std::string& title) {
  const auto orders = QueryOrders(database);
  std::cout << "database: " << title << '\n';
  for (int row = 0; row < orders->GetCount(); ++row, orders->MoveToNext()) {
    std::cout << "  " << orders->GetInt(0) << "  " << orders->GetString(1) << "  "
              << orders->GetDouble(2) << '\n';
  }
}

void InsertOrder(DatabaseInterface& database, const std::string& sku, double price) {
  database.Insert("orders",
                  {{"sku", Variant::FromString(sku)}, {"price", Variant::FromDouble(price)}});
}

void ShowDatabase(const PlatformServicesInterface& services) {
  using Type = DatabaseInterface::ColumnDataType;
  using Constraint = DatabaseInterface::ColumnConstraint;
  const auto database = services.GetDatabaseService()->OpenDatabase("orders.db");
  database->CreateTable("orders", {"id", "sku", "price"}, {Type::Integer, Type::Text, Type::Real},
                        {{Constraint::PrimaryKey, Constraint::AutoIncrement}, {}, {}});
  PrintOrders(*database, "what earlier runs have kept");
  InsertOrder(*database, "A-17", 19.9);
  InsertOrder(*database, "B-2", 5);
  PrintOrders(*database, "with two new orders");
  // Arguments take the place of the question marks as they stand, so texts need their quotes.
  database->Update("orders", {{"price", Variant::FromDouble(17.5)}}, "sku = '?'", {"A-17"});
  database->Delete("orders", "sku = '?' OR price < ?", {"B-2", "10"});
  PrintOrders(*database, "after an update and a deletion");
}

// What is dropped and deleted is gone, and asking for it says so.
void ShowDisposal(const PlatformServicesInterface& services) {
  const auto databases = services.GetDatabaseService();
  const auto scratch = databases->OpenDatabase("scratch.db");
  scratch->CreateTable("notes", {"note"}, {DatabaseInterface::ColumnDataType::Text}, {{}});
  scratch->DeleteTable("notes");
  try {
    scratch->Insert("notes", {{"note", Variant::FromString("too late")}});
  } catch (const Velmora::SdkError& error) {
    std::cout << "a dropped table: " << error.what();
  }
  const auto files = services.GetFileSystemService();
  const std::string folder = services.GetSystemInfoService()->GetApplicationCacheDir();
  std::cout << "database files before and after one is deleted: "
            << files->GetDirectoryFiles(folder).size() << ", ";
  databases->DeleteDatabase("scratch.db");
  std::cout << files->GetDirectoryFiles(folder).size() << "\n\n";
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
    ShowDisposal(*services);
    ShowWhere(*services);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << "services: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
