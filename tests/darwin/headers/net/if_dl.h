// tests/darwin/headers/net/if_dl.h: the link-layer address: name, then hardware address.
#pragma once

#include <stdint.h>

struct sockaddr_dl {
  uint8_t sdl_len;
  uint8_t sdl_family;
  uint16_t sdl_index;
  uint8_t sdl_type;
  uint8_t sdl_nlen;
  uint8_t sdl_alen;
  uint8_t sdl_slen;
  char sdl_data[12];
};
