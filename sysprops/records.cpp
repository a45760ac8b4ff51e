// sysprops/records.cpp: life of the collector object and the last known local address.
#include "sysprops/records.h"

namespace quillon_com::orb::sysprops {

std::wstring ISysProps::m_wstrLastKnownLocalIP;

ISysProps::ISysProps() = default;
ISysProps::~ISysProps() = default;

void ISysProps::updateLocalIP(const std::wstring& address) { m_wstrLastKnownLocalIP = address; }

std::wstring ISysProps::GetLastKnownLocalIP() { return m_wstrLastKnownLocalIP; }

}  // namespace quillon_com::orb::sysprops
