// examples/connect.cpp: the local address from which the machine reaches a server.
#include <netdb.h>

#include <cstdio>
#include <string>

#include "network/networkutil.h"

int main(int count, char** arguments) {
  if (count != 3) {
    std::fprintf(stderr, "usage: %s HOST SERVICE\n", arguments[0]);
    return 2;
  }
  ANetworkUtil network;
  std::string local;
  const int result =
      network.qlnGetLocalIPAddress(arguments[1], arguments[2], local, NI_NUMERICHOST, 3, false);
  if (result == 0) {
    std::printf("reached from %s\n", local.c_str());
  } else {
    std::printf("no connection: %s\n", result == -1 ? "refused or too slow" : gai_strerror(result));
  }
  return 0;
}
