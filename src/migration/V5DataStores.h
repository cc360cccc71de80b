#pragma once

// The data stores of this generation that take over what v4 kept, by the modules that read them.
namespace Velmora::V5DataStores {

inline constexpr const char* kAcquisition = "Acquisition";
inline constexpr const char* kAnalytics = "AnalyticsDataStorage";
inline constexpr const char* kLumbrex = "LBXDataStore";
inline constexpr const char* kIdentity = "visitorIDServiceDataStore";
inline constexpr const char* kLifecycle = "KorvoMobile_Lifecycle";
inline constexpr const char* kQuorvel = "KORVOMOBILE_QUORVEL";

// These take nothing over: v4 kept nothing of the kind.
inline constexpr const char* kConfiguration = "KorvoMobile_ConfigState";
inline constexpr const char* kConfigurationPrivacyStatus = "PrivacyStatus";
inline constexpr const char* kUserProfile = "KRVUserProfile";

}  // namespace Velmora::V5DataStores
