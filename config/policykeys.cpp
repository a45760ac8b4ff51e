// config/policykeys.cpp: the texts of the policy sections and keys.
#include "config/configkeys.h"

namespace quillon_com::orb {

const std::wstring section_general = L"General";
const std::wstring section_network = L"Network";
const std::wstring section_listenserver = L"AgentListenServer";
const std::wstring section_events = L"AgentEvents";
const std::wstring section_logging = L"AgentLogging";
const std::wstring section_sitelist = L"SiteList";
const std::wstring section_proxy = L"ProxySettings";
const std::wstring section_version_control = L"VersionControl";
const std::wstring section_inetmanager = L"InetManager";
const std::wstring section_advanced = L"Advanced";

const std::wstring key_general_bCollectFullProps = L"bCollectFullProps";
const std::wstring key_general_PolicyEnforcementInterval = L"PolicyEnforcementInterval";
const std::wstring key_general_force_install = L"ForceInstall";

const std::wstring key_network_bAgentASCI = L"bAgentASCI";
const std::wstring key_network_asci_interval = L"CheckNetworkMessageInterval";
const std::wstring key_network_asci_do_when = L"AsciDoWhen";

const std::wstring key_ls_bEnableAgentPing = L"bEnableAgentPing";
const std::wstring key_ls_bEnableRelayService = L"bEnableRelayService";
const std::wstring key_ls_AgentPingPort = L"AgentPingPort";
const std::wstring key_ls_bListenToHUBServerOnly = L"bListenToHUBServerOnly";

const std::wstring key_events_EnableEventTrigger = L"AgPlcyEnableEventTrigger";
const std::wstring key_events_EventTriggerThreshold = L"AgPlcyEventTriggerThreshold";
const std::wstring key_events_EventTriggerDelayMins = L"AgPlcyEventTriggerDelayMins";
const std::wstring key_events_MaxEventsPerTrigger = L"AgPlcyMaxEventsPerTrigger";

const std::wstring key_log_bEnableLog = L"bEnableLog";
const std::wstring key_log_bLimitLogSize = L"bLimitLogSize";
const std::wstring key_log_nLogSizeLimit = L"nLogSizeLimit";
const std::wstring key_log_bVerbose = L"bVerbose";
const std::wstring key_log_bEnableRemoteLog = L"bEnableRemoteLog";

const std::wstring key_sl_NumberOfSites = L"uiNumberOfSites";
const std::wstring key_sl_protocol = L"uiSiteType";
const std::wstring key_sl_enabled = L"bEnabled";
const std::wstring key_sl_site_id = L"szID";
const std::wstring key_sl_site_name = L"szName";
const std::wstring key_sl_sites_server = L"szServer";
const std::wstring key_sl_server_name = L"szServerName";
const std::wstring key_sl_server_ip = L"szServerIP";
const std::wstring key_sl_share_name = L"szShareName";
const std::wstring key_sl_relative_path = L"szRelativePath";
const std::wstring key_sl_site_port = L"uiPort";
const std::wstring key_sl_type = L"uiType";
const std::wstring key_sl_use_auth = L"bUseAuth";
const std::wstring key_sl_user_name = L"szUserName";
const std::wstring key_sl_password = L"szPassword";
const std::wstring key_sl_password_encrypted = L"bEncrypted";
const std::wstring key_sl_domain = L"szDomainName";
const std::wstring key_sl_order = L"uiOrder";
const std::wstring key_sl_local = L"bLocal";

const std::wstring key_proxy_type = L"uiUseProxyType";
const std::wstring key_proxy_http_server = L"szHttpProxyServer";
const std::wstring key_proxy_http_port = L"uiHttpProxyPort";
const std::wstring key_proxy_http_use_auth = L"bUseHttpAuthentication";
const std::wstring key_proxy_http_user = L"szHttpProxyUser";
const std::wstring key_proxy_http_password = L"szHttpProxyPassword";
const std::wstring key_proxy_ftp_server = L"szFtpProxyServer";
const std::wstring key_proxy_ftp_port = L"uiFtpProxyPort";
const std::wstring key_proxy_ftp_use_auth = L"bUseFtpAuthentication";
const std::wstring key_proxy_ftp_user = L"szFtpProxyUser";
const std::wstring key_proxy_ftp_password = L"szFtpProxyPassword";
const std::wstring key_proxy_num_exceptions = L"uiNumExceptions";
const std::wstring key_proxy_exception = L"Exception";
const std::wstring key_proxy_bypass_local = L"bBypassLocalAddress";

const std::wstring key_vc_version = L"Version";

const std::wstring key_inetmgr_total_sites = L"SitelistOrderNum";
const std::wstring key_inetmgr_disabled_sites = L"DisabledSiteNum";
const std::wstring key_inetmgr_sl_order = L"SitelistOrder";
const std::wstring key_inetmgr_sl_disabled_site = L"DisabledSites";

const std::wstring key_advanced_FindNearestMethod = L"uiFindNearestMethod";
const std::wstring key_advanced_overwrite_client_sites = L"OverwriteClientSites";

const std::wstring key_EnforcePolicy = L"EnforcePolicy";
const std::wstring key_relay_service_enabled = L"bEnableRelayService";
const std::wstring key_p2p_service_enabled = L"bEnableP2PService";
const std::wstring key_agent_serviceport = L"AgtServiceMgrPort";
const std::wstring key_count_relay_failure_connections = L"FAILED_TO_CONN_SERVER";
const std::wstring key_count_relay_max_connections_exceeded = L"MAX_CONN_EXCEEDED";

}  // namespace quillon_com::orb
