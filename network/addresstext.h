// network/addresstext.h: numeric texts of socket addresses, masks, subnets and hardware addresses.
//
// Every function may be called from several threads at once and stores no error word.
#pragma once

#include <array>
#include <string>

#include "platform/system.h"

namespace quillon_com::orb::network {

// Assigns the numeric text of `address`, an IPv6 zone included, to `text`. Returns false, `text`
// untouched, when its family has none.
bool numeric_text(const platform::SocketAddress& address, std::string* text);

// getNetMask's rule.
bool mask_text(unsigned family, const sockaddr* mask, std::string* text);

// getNetAddr's rule; the addresses are read for AF_INET only.
bool subnet_text(unsigned family, const sockaddr* mask, const sockaddr* address, std::string* text);

// formatMACAddress's text.
std::string hardware_text(const std::array<unsigned char, 6>& bytes);

// `address` without brackets and without its zone ("%" and what follows), in network/ipv6.cpp.
// Brackets are the first "[" and the first "]" behind it; they are put back around the result when
// there were any and `keep_brackets` asks for them.
// Quirk: the zone goes from every text, whatever address or name it begins with.
std::string strip_v6_text(const std::string& address, bool keep_brackets);

}  // namespace quillon_com::orb::network
