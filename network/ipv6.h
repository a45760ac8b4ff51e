// network/ipv6.h: pure text helpers for numeric IPv6 addresses.
//
// Nothing here asks the system or fails: malformed text gives some text. Memory that runs out
// throws std::bad_alloc. Groups keep the digits they were written with, except in
// calculateSubNetAddrForV6. Every function takes time in proportion to its texts and may be called
// from several threads at once.
#pragma once

#include <cstdint>
#include <string>

#include "platform/export.h"

// How often `ch` occurs in `text`, up to 7.
// Quirk: a count above 7 is not returned; `limit`, cut to 16 bits, is: nine digits joined by eight
// colons give 7 for the limit 7, 99 for 99 and 65535 for -1.
ORB_EXPORT uint16_t noOfOccurences(const std::string& text, char ch, int limit);

// `address` without its zone ("%" and what follows) and with the first "::" written out, so that
// eight groups stand there; "fe80::1%en0" gives "fe80:0:0:0:0:0:0:1". A text without "::" only
// loses its zone.
// Quirk: the zone goes from every text, whatever address or name it begins with.
// Quirk: only colons are counted, so an IPv4 tail counts as one group: "::ffff:1.2.3.4" gives
// "0:0:0:0:0:0:ffff:1.2.3.4".
// Quirk: the colons in front of the "::", and those from its second one on, are each counted up to
// seven, so nothing is inserted into forty colons: "0", 39 colons and "0".
// Where both counts together pass seven, the text is returned as it was given, zone included.
ORB_EXPORT std::string expandIPV6Address(std::string address);

// The subnet of `address` under `mask`, both expanded: group AND group in lower-case hexadecimal
// without leading zeros. There are as many groups as the shorter text has; "" when either is empty.
// Quirk: a group is what strtoul reads in base 16: blanks, signs and "0x" in front are taken, what
// follows the digits is not, no digit at all counts as 0, and a group above the range of an
// unsigned long counts as the highest one.
ORB_EXPORT std::string calculateSubNetAddrForV6(const std::string& address,
                                                const std::string& mask);

// The form of an IPv6 address that may stand in a host name: brackets and zone removed, "-" for
// ":", and ".ipv6-literal.net" behind it; "[fe80::1%4]" gives "fe80--1.ipv6-literal.net". A text
// that contains this ending already, or no ":", is returned unchanged. Brackets are the first "["
// and the first "]"; a "]" that stands before the "[" makes no pair, and both then stay.
// Quirk: the zone is dropped, although the reverse conversion knows an encoded one.
ORB_EXPORT std::string convertV6AddrToLiteralFormat(std::string address);

// The address of such a form: "fe80--1s4.ipv6-literal.net" gives "fe80::1". Brackets are removed
// as above. Without the ending nothing else changes; with it, the ending and what follows go, ":"
// stands for "-", and the first "s" is cut with what follows.
// Quirk: the encoded zone behind the "s" is not kept.
ORB_EXPORT std::string convertLiteralFormatToV6Addr(std::string literal);
