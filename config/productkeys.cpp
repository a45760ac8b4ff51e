// config/productkeys.cpp: the texts of the product properties.
#include "config/configkeys.h"

namespace quillon_com::orb {

const std::wstring props_section_general = L"General";
const std::wstring props_key_installed_path = L"szInstallDir";
const std::wstring props_key_product_version = L"szProductVer";
const std::wstring props_key_hotfix_version = L"Hotfix";
const std::wstring props_key_show_ui = L"ShowAgentUI";
const std::wstring props_key_show_reboot_ui = L"ShowRebootUI";
const std::wstring props_key_reboot_timeout = L"RebootTimeOut";
const std::wstring props_key_plugin_version = L"PluginVersion";
const std::wstring props_key_language = L"Language";
const std::wstring props_key_agent_guid = L"AgentGUID";
const std::wstring props_key_asci = L"CheckNetworkMessageInterval";
const std::wstring props_key_refresh_interval = L"PropsRefreshInterval";
const std::wstring props_loggedon_user = L"UserName";

}  // namespace quillon_com::orb
