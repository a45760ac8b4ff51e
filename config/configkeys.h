// config/configkeys.h: the names of the agent's policy settings, product properties and task files.
//
// Data only: whoever reads or writes one of these settings takes its section and key from here, so
// that a name is spelled in one place. The store that a name indexes is its user's affair, and
// users compare the texts byte for byte. The names of policy settings and product properties are
// wide, those of task files narrow. Most policy texts begin with the type of their value: "b" a
// flag, "ui" or "n" a number, "sz" a text. Constants that hold equal texts are separate all the
// same.
//
// The constants are made when the library is loaded, before the static initialisers of whatever
// links it, never change, and go when it is unloaded. Safe from any thread.
#pragma once

#include <string>

#include "platform/export.h"

namespace quillon_com::orb {

// Sections of the policy settings.
extern ORB_EXPORT const std::wstring section_general;
extern ORB_EXPORT const std::wstring section_network;
extern ORB_EXPORT const std::wstring section_listenserver;
extern ORB_EXPORT const std::wstring section_events;
extern ORB_EXPORT const std::wstring section_logging;
extern ORB_EXPORT const std::wstring section_sitelist;
extern ORB_EXPORT const std::wstring section_proxy;
extern ORB_EXPORT const std::wstring section_version_control;
extern ORB_EXPORT const std::wstring section_inetmanager;
extern ORB_EXPORT const std::wstring section_advanced;

// Keys of section_general.
extern ORB_EXPORT const std::wstring key_general_bCollectFullProps;
extern ORB_EXPORT const std::wstring key_general_PolicyEnforcementInterval;
extern ORB_EXPORT const std::wstring key_general_force_install;

// Keys of section_network.
// Quirk: key_network_asci_interval and props_key_asci hold one text, "CheckNetworkMessageInterval".
extern ORB_EXPORT const std::wstring key_network_bAgentASCI;
extern ORB_EXPORT const std::wstring key_network_asci_interval;
extern ORB_EXPORT const std::wstring key_network_asci_do_when;

// Keys of section_listenserver.
extern ORB_EXPORT const std::wstring key_ls_bEnableAgentPing;
extern ORB_EXPORT const std::wstring key_ls_bEnableRelayService;
extern ORB_EXPORT const std::wstring key_ls_AgentPingPort;
extern ORB_EXPORT const std::wstring key_ls_bListenToHUBServerOnly;

// Keys of section_events.
// Quirk: the texts begin with "AgPlcy", of which the names say nothing.
extern ORB_EXPORT const std::wstring key_events_EnableEventTrigger;
extern ORB_EXPORT const std::wstring key_events_EventTriggerThreshold;
extern ORB_EXPORT const std::wstring key_events_EventTriggerDelayMins;
extern ORB_EXPORT const std::wstring key_events_MaxEventsPerTrigger;

// Keys of section_logging.
extern ORB_EXPORT const std::wstring key_log_bEnableLog;
extern ORB_EXPORT const std::wstring key_log_bLimitLogSize;
extern ORB_EXPORT const std::wstring key_log_nLogSizeLimit;
extern ORB_EXPORT const std::wstring key_log_bVerbose;
extern ORB_EXPORT const std::wstring key_log_bEnableRemoteLog;

// Keys of section_sitelist, one set per site but for the number of sites.
extern ORB_EXPORT const std::wstring key_sl_NumberOfSites;
extern ORB_EXPORT const std::wstring key_sl_protocol;
extern ORB_EXPORT const std::wstring key_sl_enabled;
extern ORB_EXPORT const std::wstring key_sl_site_id;
extern ORB_EXPORT const std::wstring key_sl_site_name;
extern ORB_EXPORT const std::wstring key_sl_sites_server;
extern ORB_EXPORT const std::wstring key_sl_server_name;
extern ORB_EXPORT const std::wstring key_sl_server_ip;
extern ORB_EXPORT const std::wstring key_sl_share_name;
extern ORB_EXPORT const std::wstring key_sl_relative_path;
extern ORB_EXPORT const std::wstring key_sl_site_port;
extern ORB_EXPORT const std::wstring key_sl_type;
extern ORB_EXPORT const std::wstring key_sl_use_auth;
extern ORB_EXPORT const std::wstring key_sl_user_name;
extern ORB_EXPORT const std::wstring key_sl_password;
extern ORB_EXPORT const std::wstring key_sl_password_encrypted;
extern ORB_EXPORT const std::wstring key_sl_domain;
extern ORB_EXPORT const std::wstring key_sl_order;
extern ORB_EXPORT const std::wstring key_sl_local;

// Keys of section_proxy.
extern ORB_EXPORT const std::wstring key_proxy_type;
extern ORB_EXPORT const std::wstring key_proxy_http_server;
extern ORB_EXPORT const std::wstring key_proxy_http_port;
extern ORB_EXPORT const std::wstring key_proxy_http_use_auth;
extern ORB_EXPORT const std::wstring key_proxy_http_user;
extern ORB_EXPORT const std::wstring key_proxy_http_password;
extern ORB_EXPORT const std::wstring key_proxy_ftp_server;
extern ORB_EXPORT const std::wstring key_proxy_ftp_port;
extern ORB_EXPORT const std::wstring key_proxy_ftp_use_auth;
extern ORB_EXPORT const std::wstring key_proxy_ftp_user;
extern ORB_EXPORT const std::wstring key_proxy_ftp_password;
extern ORB_EXPORT const std::wstring key_proxy_num_exceptions;
extern ORB_EXPORT const std::wstring key_proxy_exception;
extern ORB_EXPORT const std::wstring key_proxy_bypass_local;

// Key of section_version_control.
extern ORB_EXPORT const std::wstring key_vc_version;

// Keys of section_inetmanager.
extern ORB_EXPORT const std::wstring key_inetmgr_total_sites;
extern ORB_EXPORT const std::wstring key_inetmgr_disabled_sites;
extern ORB_EXPORT const std::wstring key_inetmgr_sl_order;
extern ORB_EXPORT const std::wstring key_inetmgr_sl_disabled_site;

// Keys of section_advanced.
extern ORB_EXPORT const std::wstring key_advanced_FindNearestMethod;
extern ORB_EXPORT const std::wstring key_advanced_overwrite_client_sites;

// Keys that belong to no section by their name: the components that use them decide where each is
// kept.
// Quirk: key_relay_service_enabled and key_ls_bEnableRelayService hold one text,
// "bEnableRelayService".
// Quirk: the two counters of relay connections are upper case with underscores,
// "FAILED_TO_CONN_SERVER" and "MAX_CONN_EXCEEDED".
extern ORB_EXPORT const std::wstring key_EnforcePolicy;
extern ORB_EXPORT const std::wstring key_relay_service_enabled;
extern ORB_EXPORT const std::wstring key_p2p_service_enabled;
extern ORB_EXPORT const std::wstring key_agent_serviceport;
extern ORB_EXPORT const std::wstring key_count_relay_failure_connections;
extern ORB_EXPORT const std::wstring key_count_relay_max_connections_exceeded;

// The properties of an installed product: their section, their keys and the logged-on user.
// Quirk: section_general, props_section_general and the narrow GeneralSection hold one text,
// "General".
extern ORB_EXPORT const std::wstring props_section_general;
extern ORB_EXPORT const std::wstring props_key_installed_path;
extern ORB_EXPORT const std::wstring props_key_product_version;
extern ORB_EXPORT const std::wstring props_key_hotfix_version;
extern ORB_EXPORT const std::wstring props_key_show_ui;
extern ORB_EXPORT const std::wstring props_key_show_reboot_ui;
extern ORB_EXPORT const std::wstring props_key_reboot_timeout;
extern ORB_EXPORT const std::wstring props_key_plugin_version;
extern ORB_EXPORT const std::wstring props_key_language;
extern ORB_EXPORT const std::wstring props_key_agent_guid;
extern ORB_EXPORT const std::wstring props_key_asci;
extern ORB_EXPORT const std::wstring props_key_refresh_interval;
extern ORB_EXPORT const std::wstring props_loggedon_user;

// Task files: the root and the sections.
// Quirk: the text of DependenciesSection has a blank, "Task Dependencies".
extern ORB_EXPORT const std::string TaskRoot;
extern ORB_EXPORT const std::string TaskSection;
extern ORB_EXPORT const std::string TaskGroupSection;
extern ORB_EXPORT const std::string GeneralSection;
extern ORB_EXPORT const std::string SettingsSection;
extern ORB_EXPORT const std::string Schedule_Section;
extern ORB_EXPORT const std::string DependenciesSection;

// Keys of TaskSection: what a task is.
extern ORB_EXPORT const std::string TaskNameKey;
extern ORB_EXPORT const std::string TaskGuidKey;
extern ORB_EXPORT const std::string TaskTypeKey;
extern ORB_EXPORT const std::string PlatformsKey;
extern ORB_EXPORT const std::string SoftwareIdKey;
extern ORB_EXPORT const std::string CreatorSoftwareKey;
extern ORB_EXPORT const std::string PriorityKey;
extern ORB_EXPORT const std::string VersionKey;
extern ORB_EXPORT const std::string PendingKey;

// Keys of SettingsSection: how a task runs.
extern ORB_EXPORT const std::string EnabledKey;
extern ORB_EXPORT const std::string StopAfterMinutesKey;
extern ORB_EXPORT const std::string DeleteWhenFinishedKey;

// Keys of Schedule_Section: when a task runs.
// Quirk: StopTimeSpecified_Key, a flag, holds "StopDateValid", and RandomizationInterval_Key holds
// "RandomizationWndMins".
extern ORB_EXPORT const std::string ScheduleType_Key;
extern ORB_EXPORT const std::string StartDateTime_Key;
extern ORB_EXPORT const std::string StopDateTime_Key;
extern ORB_EXPORT const std::string StopTimeSpecified_Key;
extern ORB_EXPORT const std::string GMT_Key;
extern ORB_EXPORT const std::string IdleMinutes_Key;
extern ORB_EXPORT const std::string AtStartupDelayMinutes_Key;
extern ORB_EXPORT const std::string RunIfMissed_Key;
extern ORB_EXPORT const std::string RunIfMissedDelay_Key;
extern ORB_EXPORT const std::string RandomizationEnabled_Key;
extern ORB_EXPORT const std::string RandomizationInterval_Key;
extern ORB_EXPORT const std::string TaskRepeatable_Key;
extern ORB_EXPORT const std::string RepeatOption_Key;
extern ORB_EXPORT const std::string RepeatInterval_Key;
extern ORB_EXPORT const std::string UntilOption_Key;
extern ORB_EXPORT const std::string UntilDuration_Key;
extern ORB_EXPORT const std::string UntilTime_Key;
extern ORB_EXPORT const std::string RepeatDays_Key;
extern ORB_EXPORT const std::string DaysOfWeek_Key;
extern ORB_EXPORT const std::string RepeatWeeks_Key;
extern ORB_EXPORT const std::string MonthOption_Key;
extern ORB_EXPORT const std::string DayNumOfMonth_Key;
extern ORB_EXPORT const std::string WeekNumOfMonth_Key;
extern ORB_EXPORT const std::string DayOfWeek_Key;
extern ORB_EXPORT const std::string MaskMonthsOfYear_Key;
extern ORB_EXPORT const std::string TaskFinished_Key;
extern ORB_EXPORT const std::string EnableRunTaskOnceADay_Key;

// Keys of DependenciesSection: the number of a task's dependencies, and the stem of their entries'
// keys, to which the task components join an entry's index.
extern ORB_EXPORT const std::string NumDependencies_Key;
extern ORB_EXPORT const std::string Dependency_I_Key;

}  // namespace quillon_com::orb
