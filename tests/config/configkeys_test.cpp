// tests/config/configkeys_test.cpp: every configuration name by its text, and the names against the
// header that declares them and the list of exports.
#include "config/configkeys.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <string_view>

#include "tests/support/named_texts.h"

namespace quillon_com::orb {
namespace {

using orbtest::NarrowName;
using orbtest::WideName;

const WideName kPolicySections[] = {
    {"section_general", section_general, L"General"},
    {"section_network", section_network, L"Network"},
    {"section_listenserver", section_listenserver, L"AgentListenServer"},
    {"section_events", section_events, L"AgentEvents"},
    {"section_logging", section_logging, L"AgentLogging"},
    {"section_sitelist", section_sitelist, L"SiteList"},
    {"section_proxy", section_proxy, L"ProxySettings"},
    {"section_version_control", section_version_control, L"VersionControl"},
    {"section_inetmanager", section_inetmanager, L"InetManager"},
    {"section_advanced", section_advanced, L"Advanced"},
};

const WideName kPolicyKeys[] = {
    {"key_general_bCollectFullProps", key_general_bCollectFullProps, L"bCollectFullProps"},
    {"key_general_PolicyEnforcementInterval", key_general_PolicyEnforcementInterval,
     L"PolicyEnforcementInterval"},
    {"key_general_force_install", key_general_force_install, L"ForceInstall"},
    {"key_network_bAgentASCI", key_network_bAgentASCI, L"bAgentASCI"},
    {"key_network_asci_interval", key_network_asci_interval, L"CheckNetworkMessageInterval"},
    {"key_network_asci_do_when", key_network_asci_do_when, L"AsciDoWhen"},
    {"key_ls_bEnableAgentPing", key_ls_bEnableAgentPing, L"bEnableAgentPing"},
    {"key_ls_bEnableRelayService", key_ls_bEnableRelayService, L"bEnableRelayService"},
    {"key_ls_AgentPingPort", key_ls_AgentPingPort, L"AgentPingPort"},
    {"key_ls_bListenToHUBServerOnly", key_ls_bListenToHUBServerOnly, L"bListenToHUBServerOnly"},
    {"key_events_EnableEventTrigger", key_events_EnableEventTrigger, L"AgPlcyEnableEventTrigger"},
    {"key_events_EventTriggerThreshold", key_events_EventTriggerThreshold,
     L"AgPlcyEventTriggerThreshold"},
    {"key_events_EventTriggerDelayMins", key_events_EventTriggerDelayMins,
     L"AgPlcyEventTriggerDelayMins"},
    {"key_events_MaxEventsPerTrigger", key_events_MaxEventsPerTrigger,
     L"AgPlcyMaxEventsPerTrigger"},
    {"key_log_bEnableLog", key_log_bEnableLog, L"bEnableLog"},
    {"key_log_bLimitLogSize", key_log_bLimitLogSize, L"bLimitLogSize"},
    {"key_log_nLogSizeLimit", key_log_nLogSizeLimit, L"nLogSizeLimit"},
    {"key_log_bVerbose", key_log_bVerbose, L"bVerbose"},
    {"key_log_bEnableRemoteLog", key_log_bEnableRemoteLog, L"bEnableRemoteLog"},
    {"key_sl_NumberOfSites", key_sl_NumberOfSites, L"uiNumberOfSites"},
    {"key_sl_protocol", key_sl_protocol, L"uiSiteType"},
    {"key_sl_enabled", key_sl_enabled, L"bEnabled"},
    {"key_sl_site_id", key_sl_site_id, L"szID"},
    {"key_sl_site_name", key_sl_site_name, L"szName"},
    {"key_sl_sites_server", key_sl_sites_server, L"szServer"},
    {"key_sl_server_name", key_sl_server_name, L"szServerName"},
    {"key_sl_server_ip", key_sl_server_ip, L"szServerIP"},
    {"key_sl_share_name", key_sl_share_name, L"szShareName"},
    {"key_sl_relative_path", key_sl_relative_path, L"szRelativePath"},
    {"key_sl_site_port", key_sl_site_port, L"uiPort"},
    {"key_sl_type", key_sl_type, L"uiType"},
    {"key_sl_use_auth", key_sl_use_auth, L"bUseAuth"},
    {"key_sl_user_name", key_sl_user_name, L"szUserName"},
    {"key_sl_password", key_sl_password, L"szPassword"},
    {"key_sl_password_encrypted", key_sl_password_encrypted, L"bEncrypted"},
    {"key_sl_domain", key_sl_domain, L"szDomainName"},
    {"key_sl_order", key_sl_order, L"uiOrder"},
    {"key_sl_local", key_sl_local, L"bLocal"},
    {"key_proxy_type", key_proxy_type, L"uiUseProxyType"},
    {"key_proxy_http_server", key_proxy_http_server, L"szHttpProxyServer"},
    {"key_proxy_http_port", key_proxy_http_port, L"uiHttpProxyPort"},
    {"key_proxy_http_use_auth", key_proxy_http_use_auth, L"bUseHttpAuthentication"},
    {"key_proxy_http_user", key_proxy_http_user, L"szHttpProxyUser"},
    {"key_proxy_http_password", key_proxy_http_password, L"szHttpProxyPassword"},
    {"key_proxy_ftp_server", key_proxy_ftp_server, L"szFtpProxyServer"},
    {"key_proxy_ftp_port", key_proxy_ftp_port, L"uiFtpProxyPort"},
    {"key_proxy_ftp_use_auth", key_proxy_ftp_use_auth, L"bUseFtpAuthentication"},
    {"key_proxy_ftp_user", key_proxy_ftp_user, L"szFtpProxyUser"},
    {"key_proxy_ftp_password", key_proxy_ftp_password, L"szFtpProxyPassword"},
    {"key_proxy_num_exceptions", key_proxy_num_exceptions, L"uiNumExceptions"},
    {"key_proxy_exception", key_proxy_exception, L"Exception"},
    {"key_proxy_bypass_local", key_proxy_bypass_local, L"bBypassLocalAddress"},
    {"key_vc_version", key_vc_version, L"Version"},
    {"key_inetmgr_total_sites", key_inetmgr_total_sites, L"SitelistOrderNum"},
    {"key_inetmgr_disabled_sites", key_inetmgr_disabled_sites, L"DisabledSiteNum"},
    {"key_inetmgr_sl_order", key_inetmgr_sl_order, L"SitelistOrder"},
    {"key_inetmgr_sl_disabled_site", key_inetmgr_sl_disabled_site, L"DisabledSites"},
    {"key_advanced_FindNearestMethod", key_advanced_FindNearestMethod, L"uiFindNearestMethod"},
    {"key_advanced_overwrite_client_sites", key_advanced_overwrite_client_sites,
     L"OverwriteClientSites"},
    {"key_EnforcePolicy", key_EnforcePolicy, L"EnforcePolicy"},
    {"key_relay_service_enabled", key_relay_service_enabled, L"bEnableRelayService"},
    {"key_p2p_service_enabled", key_p2p_service_enabled, L"bEnableP2PService"},
    {"key_agent_serviceport", key_agent_serviceport, L"AgtServiceMgrPort"},
    {"key_count_relay_failure_connections", key_count_relay_failure_connections,
     L"FAILED_TO_CONN_SERVER"},
    {"key_count_relay_max_connections_exceeded", key_count_relay_max_connections_exceeded,
     L"MAX_CONN_EXCEEDED"},
};

const WideName kProductProperties[] = {
    {"props_section_general", props_section_general, L"General"},
    {"props_key_installed_path", props_key_installed_path, L"szInstallDir"},
    {"props_key_product_version", props_key_product_version, L"szProductVer"},
    {"props_key_hotfix_version", props_key_hotfix_version, L"Hotfix"},
    {"props_key_show_ui", props_key_show_ui, L"ShowAgentUI"},
    {"props_key_show_reboot_ui", props_key_show_reboot_ui, L"ShowRebootUI"},
    {"props_key_reboot_timeout", props_key_reboot_timeout, L"RebootTimeOut"},
    {"props_key_plugin_version", props_key_plugin_version, L"PluginVersion"},
    {"props_key_language", props_key_language, L"Language"},
    {"props_key_agent_guid", props_key_agent_guid, L"AgentGUID"},
    {"props_key_asci", props_key_asci, L"CheckNetworkMessageInterval"},
    {"props_key_refresh_interval", props_key_refresh_interval, L"PropsRefreshInterval"},
    {"props_loggedon_user", props_loggedon_user, L"UserName"},
};

const NarrowName kTaskSections[] = {
    {"TaskRoot", TaskRoot, "TaskRoot"},
    {"TaskSection", TaskSection, "Task"},
    {"TaskGroupSection", TaskGroupSection, "TaskGroup"},
    {"GeneralSection", GeneralSection, "General"},
    {"SettingsSection", SettingsSection, "Settings"},
    {"Schedule_Section", Schedule_Section, "Schedule"},
    {"DependenciesSection", DependenciesSection, "Task Dependencies"},
};

const NarrowName kTaskKeys[] = {
    {"TaskNameKey", TaskNameKey, "DisplayName"},
    {"TaskGuidKey", TaskGuidKey, "TaskID"},
    {"TaskTypeKey", TaskTypeKey, "TaskType"},
    {"PlatformsKey", PlatformsKey, "Platforms"},
    {"SoftwareIdKey", SoftwareIdKey, "SoftwareID"},
    {"CreatorSoftwareKey", CreatorSoftwareKey, "CreatorID"},
    {"PriorityKey", PriorityKey, "Priority"},
    {"VersionKey", VersionKey, "TaskVersion"},
    {"PendingKey", PendingKey, "TaskPending"},
    {"EnabledKey", EnabledKey, "Enabled"},
    {"StopAfterMinutesKey", StopAfterMinutesKey, "StopAfterMinutes"},
    {"DeleteWhenFinishedKey", DeleteWhenFinishedKey, "DeleteWhenFinished"},
};

const NarrowName kScheduleKeys[] = {
    {"ScheduleType_Key", ScheduleType_Key, "Type"},
    {"StartDateTime_Key", StartDateTime_Key, "StartDateTime"},
    {"StopDateTime_Key", StopDateTime_Key, "StopDateTime"},
    {"StopTimeSpecified_Key", StopTimeSpecified_Key, "StopDateValid"},
    {"GMT_Key", GMT_Key, "GMTTime"},
    {"IdleMinutes_Key", IdleMinutes_Key, "IdleMinutes"},
    {"AtStartupDelayMinutes_Key", AtStartupDelayMinutes_Key, "AtStartupDelayMinutes"},
    {"RunIfMissed_Key", RunIfMissed_Key, "RunIfMissed"},
    {"RunIfMissedDelay_Key", RunIfMissedDelay_Key, "RunIfMissedDelayMins"},
    {"RandomizationEnabled_Key", RandomizationEnabled_Key, "RandomizationEnabled"},
    {"RandomizationInterval_Key", RandomizationInterval_Key, "RandomizationWndMins"},
    {"TaskRepeatable_Key", TaskRepeatable_Key, "TaskRepeatable"},
    {"RepeatOption_Key", RepeatOption_Key, "RepeatOption"},
    {"RepeatInterval_Key", RepeatInterval_Key, "RepeatInterval"},
    {"UntilOption_Key", UntilOption_Key, "UntilOption"},
    {"UntilDuration_Key", UntilDuration_Key, "UntilDuration"},
    {"UntilTime_Key", UntilTime_Key, "UntilTime"},
    {"RepeatDays_Key", RepeatDays_Key, "RepeatDays"},
    {"DaysOfWeek_Key", DaysOfWeek_Key, "MaskDaysOfWeek"},
    {"RepeatWeeks_Key", RepeatWeeks_Key, "RepeatWeeks"},
    {"MonthOption_Key", MonthOption_Key, "MonthOption"},
    {"DayNumOfMonth_Key", DayNumOfMonth_Key, "DayNumOfMonth"},
    {"WeekNumOfMonth_Key", WeekNumOfMonth_Key, "WeekNumOfMonth"},
    {"DayOfWeek_Key", DayOfWeek_Key, "DayOfWeek"},
    {"MaskMonthsOfYear_Key", MaskMonthsOfYear_Key, "MaskMonthsOfYear"},
    {"TaskFinished_Key", TaskFinished_Key, "TaskFinished"},
    {"EnableRunTaskOnceADay_Key", EnableRunTaskOnceADay_Key, "EnableRunTaskOnceADay"},
};

const NarrowName kDependencyKeys[] = {
    {"NumDependencies_Key", NumDependencies_Key, "NumberOfDependencies"},
    {"Dependency_I_Key", Dependency_I_Key, "Dependency"},
};

using Names = std::set<std::string>;

template <typename Row, size_t kCount>
void check(const Row (&rows)[kCount], size_t count, Names* names) {
  EXPECT_EQ(count, kCount);
  for (const Row& row : rows) {
    EXPECT_EQ(row.text, row.constant) << row.name;
    EXPECT_TRUE(names->insert(row.name).second) << row.name << " stands twice";
  }
}

// What stands between `head` and `tail` on every line of `path` that begins and ends so.
Names between(const char* path, std::string_view head, std::string_view tail) {
  Names found;
  std::ifstream file(path);
  EXPECT_TRUE(file.is_open()) << path;
  for (std::string text; std::getline(file, text);) {
    const std::string_view line = text;
    if (line.size() < head.size() + tail.size() || line.substr(0, head.size()) != head) continue;
    const std::string_view rest = line.substr(head.size());
    if (rest.substr(rest.size() - tail.size()) == tail)
      found.emplace(rest.substr(0, rest.size() - tail.size()));
  }
  return found;
}

bool begins(const std::string& name, const char* head) { return name.rfind(head, 0) == 0; }

bool ends(const std::string& name, std::string_view tail) {
  return name.size() >= tail.size() && name.substr(name.size() - tail.size()) == tail;
}

// What a name begins or ends with tells those of the configuration from whatever else their name
// space has.
bool is_configuration(const std::string& name) {
  if (name.find_first_of(":( ") != std::string::npos) return false;
  return begins(name, "section_") || begins(name, "key_") || begins(name, "props_") ||
         ends(name, "Section") || ends(name, "Key") || name == "TaskRoot";
}

Names wide_names() {
  Names names;
  check(kPolicySections, 10, &names);
  check(kPolicyKeys, 65, &names);
  check(kProductProperties, 13, &names);
  return names;
}

Names narrow_names() {
  Names names;
  check(kTaskSections, 7, &names);
  check(kTaskKeys, 12, &names);
  check(kScheduleKeys, 27, &names);
  check(kDependencyKeys, 2, &names);
  return names;
}

TEST(ConfigKeys, PoliciesAndProductsHaveTheirWideTexts) { EXPECT_EQ(88U, wide_names().size()); }

TEST(ConfigKeys, TasksHaveTheirNarrowTexts) { EXPECT_EQ(48U, narrow_names().size()); }

TEST(ConfigKeys, TheHeaderDeclaresTheseAndNoOthers) {
  EXPECT_EQ(wide_names(), between(ORB_CONFIG_HEADER, "extern ORB_EXPORT const std::wstring ", ";"));
  EXPECT_EQ(narrow_names(),
            between(ORB_CONFIG_HEADER, "extern ORB_EXPORT const std::string ", ";"));
  EXPECT_EQ(88U + 48U, between(ORB_CONFIG_HEADER, "extern ", "").size());
}

TEST(ConfigKeys, TheListOfExportsHasTheseAndNoOthers) {
  Names all = wide_names();
  all.merge(narrow_names());
  Names listed;
  for (const std::string& name : between(ORB_EXPORTS_LIST, "quillon_com::orb::", ""))
    if (is_configuration(name)) listed.insert(name);
  EXPECT_EQ(all, listed);
}

TEST(ConfigKeys, QuirkNamesThatShareOneText) {
  EXPECT_EQ(key_ls_bEnableRelayService, key_relay_service_enabled);
  EXPECT_NE(&key_ls_bEnableRelayService, &key_relay_service_enabled);
  EXPECT_EQ(key_network_asci_interval, props_key_asci);
  EXPECT_NE(&key_network_asci_interval, &props_key_asci);
  EXPECT_EQ(section_general, props_section_general);
  EXPECT_NE(&section_general, &props_section_general);
  EXPECT_EQ(section_general, std::wstring(GeneralSection.begin(), GeneralSection.end()));
}

// Adds the texts of `rows` that `texts` has already to `shared`, the others to `texts`.
template <typename Row, size_t kCount, typename Texts>
void sort_out(const Row (&rows)[kCount], Texts* texts, Texts* shared) {
  for (const Row& row : rows)
    if (!texts->insert(row.constant).second) shared->insert(row.constant);
}

TEST(ConfigKeys, NoOtherWideTextIsShared) {
  std::set<std::wstring> texts, shared;
  sort_out(kPolicySections, &texts, &shared);
  sort_out(kPolicyKeys, &texts, &shared);
  sort_out(kProductProperties, &texts, &shared);
  EXPECT_EQ(
      (std::set<std::wstring>{L"CheckNetworkMessageInterval", L"General", L"bEnableRelayService"}),
      shared);
}

TEST(ConfigKeys, NoNarrowTextIsShared) {
  std::set<std::string> texts, shared;
  sort_out(kTaskSections, &texts, &shared);
  sort_out(kTaskKeys, &texts, &shared);
  sort_out(kScheduleKeys, &texts, &shared);
  sort_out(kDependencyKeys, &texts, &shared);
  EXPECT_EQ(std::set<std::string>{}, shared);
}

TEST(ConfigKeys, QuirkEventKeysBeginWithAgPlcy) {
  for (const std::wstring* key :
       {&key_events_EnableEventTrigger, &key_events_EventTriggerThreshold,
        &key_events_EventTriggerDelayMins, &key_events_MaxEventsPerTrigger})
    EXPECT_EQ(L"AgPlcy", key->substr(0, 6));
}

TEST(ConfigKeys, QuirkRelayCountersAreUpperCaseWithUnderscores) {
  EXPECT_EQ(L"FAILED_TO_CONN_SERVER", key_count_relay_failure_connections);
  EXPECT_EQ(L"MAX_CONN_EXCEEDED", key_count_relay_max_connections_exceeded);
}

TEST(ConfigKeys, QuirkScheduleKeysThatReadOtherwise) {
  EXPECT_EQ("StopDateValid", StopTimeSpecified_Key);
  EXPECT_EQ("RandomizationWndMins", RandomizationInterval_Key);
}

TEST(ConfigKeys, QuirkTheDependenciesSectionHasABlank) {
  EXPECT_EQ("Task Dependencies", DependenciesSection);
}

}  // namespace
}  // namespace quillon_com::orb
