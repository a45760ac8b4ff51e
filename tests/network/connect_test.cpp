// tests/network/connect_test.cpp: connections with a time-out on the loopback interface.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <thread>

#include "network/networkutil.h"
#include "tests/network/loopback.h"
#include "tests/network/socket_script.h"

namespace {

using orbtest::Endpoint;
using orbtest::Fd;
using orbtest::Listener;
using orbtest::RefusingPort;
using orbtest::SilentPort;
using orbtest::SocketScript;
using orbtest::stream_socket;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr int kHighDescriptor = FD_SETSIZE + 476;

bool non_blocking(int fd) { return (fcntl(fd, F_GETFL, 0) & O_NONBLOCK) != 0; }

// The same socket under a number that no fd_set has room for.
Fd moved_high(Fd low) {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  if (limit.rlim_cur <= kHighDescriptor) {
    limit.rlim_cur = kHighDescriptor + 1;
    limit.rlim_max = std::max(limit.rlim_max, limit.rlim_cur);
    if (setrlimit(RLIMIT_NOFILE, &limit) != 0) return Fd();
  }
  return Fd(fcntl(low.get(), F_DUPFD_CLOEXEC, kHighDescriptor));
}

int connect_to(int fd, Endpoint& endpoint, unsigned timeout_s) {
  return ANetworkUtil().ConnectWithTimeout(fd, endpoint.get(), static_cast<int>(endpoint.length),
                                           timeout_s);
}

struct Route {
  const char* name;
  int family;
  bool high;  // descriptor above FD_SETSIZE
};

void PrintTo(const Route& route, std::ostream* out) { *out << route.name; }

class Connect : public testing::TestWithParam<Route> {
 protected:
  void SetUp() override {
    socket = stream_socket(GetParam().family);
    if (GetParam().high) socket = moved_high(std::move(socket));
    if (socket.get() < 0) GTEST_SKIP() << "no such socket on this machine";
    ASSERT_EQ(GetParam().high, socket.get() >= FD_SETSIZE);
  }
  Fd socket;
};

TEST_P(Connect, WithoutTimeoutLeavesTheSocketBlocking) {
  Listener listener(GetParam().family);
  EXPECT_EQ(0, connect_to(socket.get(), listener.endpoint(), 0));
  EXPECT_FALSE(non_blocking(socket.get()));
}

TEST_P(Connect, WithoutTimeoutGivesTheErrorOfConnect) {
  RefusingPort port(GetParam().family);
  EXPECT_EQ(-1, connect_to(socket.get(), port.endpoint(), 0));
  EXPECT_EQ(ECONNREFUSED, errno);
  EXPECT_FALSE(non_blocking(socket.get()));
}

TEST_P(Connect, QuirkWithTimeoutTheSocketStaysNonBlocking) {
  Listener listener(GetParam().family);
  EXPECT_EQ(0, connect_to(socket.get(), listener.endpoint(), 5));
  EXPECT_TRUE(non_blocking(socket.get()));
  sockaddr_storage peer{};
  socklen_t length = sizeof peer;
  EXPECT_EQ(0, getpeername(socket.get(), reinterpret_cast<sockaddr*>(&peer), &length));
}

TEST_P(Connect, QuirkRefusedCountsAsConnectedUntilFirstUse) {
  RefusingPort port(GetParam().family);
  EXPECT_EQ(0, connect_to(socket.get(), port.endpoint(), 5));
  EXPECT_TRUE(non_blocking(socket.get()));
  EXPECT_EQ(-1, send(socket.get(), "x", 1, MSG_NOSIGNAL));
}

TEST_P(Connect, NoAnswerEndsAfterTheTimeout) {
  SilentPort port(GetParam().family);
  const auto begin = steady_clock::now();
  EXPECT_EQ(-1, connect_to(socket.get(), port.endpoint(), 1));
  const auto taken = steady_clock::now() - begin;
  EXPECT_GE(taken, seconds(1));
  EXPECT_LT(taken, seconds(20));
  EXPECT_TRUE(non_blocking(socket.get()));
  EXPECT_NE(-1, fcntl(socket.get(), F_GETFD)) << "the caller's socket was closed";
}

TEST_P(Connect, TheLongestTimeoutConnects) {
  Listener listener(GetParam().family);
  EXPECT_EQ(0, connect_to(socket.get(), listener.endpoint(), UINT_MAX));
}

TEST_P(Connect, QuirkAnAttemptThatFailsAtOnceIsJudgedByTheWait) {
  Listener listener(GetParam().family);
  ASSERT_EQ(0, connect_to(socket.get(), listener.endpoint(), 5));
  EXPECT_EQ(0, connect_to(socket.get(), listener.endpoint(), 5)) << "connected already";
  EXPECT_EQ(0, ANetworkUtil().ConnectWithTimeout(socket.get(), nullptr, 0, 5));
  EXPECT_EQ(0, ANetworkUtil().ConnectWithTimeout(socket.get(), listener.endpoint().get(), -1, 5));
  EXPECT_EQ(-1, ANetworkUtil().ConnectWithTimeout(socket.get(), nullptr, 0, 0));
}

std::atomic<int> interruptions{0};
void count_interruption(int) { ++interruptions; }

TEST_P(Connect, QuirkASignalEndsTheWait) {
  struct sigaction counting {};
  struct sigaction before {};
  counting.sa_handler = count_interruption;
  ASSERT_EQ(0, sigaction(SIGUSR2, &counting, &before));
  SilentPort port(GetParam().family);
  std::atomic<bool> done{false};
  const pthread_t waiter = pthread_self();
  std::thread sender([&] {
    while (!done) {
      pthread_kill(waiter, SIGUSR2);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  const auto begin = steady_clock::now();
  EXPECT_EQ(-1, connect_to(socket.get(), port.endpoint(), 300));
  EXPECT_LT(steady_clock::now() - begin, seconds(200));
  done = true;
  sender.join();
  sigaction(SIGUSR2, &before, nullptr);
  EXPECT_GT(interruptions.load(), 0);
}

TEST_P(Connect, AFailureOfAStepFailsTheAttempt) {
  Listener listener(GetParam().family);
  for (const char* step : {"getsockopt", GetParam().high ? "poll" : "select"}) {
    SocketScript script;
    script.failing = {{step, {1}}, {"connect", {1}}};
    EXPECT_EQ(-1, connect_to(socket.get(), listener.endpoint(), 5)) << step;
    EXPECT_EQ(1, script.calls[step]);
    EXPECT_EQ(0, script.calls[GetParam().high ? "select" : "poll"]) << "the other wait";
  }
}

INSTANTIATE_TEST_SUITE_P(Routes, Connect,
                         testing::Values(Route{"IPv4", AF_INET, false},
                                         Route{"IPv6", AF_INET6, false},
                                         Route{"IPv4AboveFdSetSize", AF_INET, true},
                                         Route{"IPv6AboveFdSetSize", AF_INET6, true}),
                         [](const auto& route) { return route.param.name; });

TEST(ConnectWithTimeout, NoSocketGivesMinusOneWithEveryTimeout) {
  Endpoint nowhere(AF_INET, 9);
  int pipes[2];
  ASSERT_EQ(0, pipe(pipes));
  const Fd in(pipes[0]), out(pipes[1]);
  const Fd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  for (unsigned timeout_s : {0u, 1u, UINT_MAX}) {
    for (int fd : {-1, -2, INT_MIN, INT_MAX, FD_SETSIZE, FD_SETSIZE - 1, 70000})
      EXPECT_EQ(-1, connect_to(fd, nowhere, timeout_s)) << fd;
    EXPECT_EQ(-1, connect_to(out.get(), nowhere, timeout_s)) << "pipe";
    EXPECT_EQ(-1, connect_to(null.get(), nowhere, timeout_s)) << "device";
  }
}

TEST(ConnectWithTimeout, ASocketThatCannotBeMadeNonBlockingIsNotConnected) {
  SocketScript script;
  script.failing["fcntl"] = {2};  // the storing of the flags
  Listener listener(AF_INET);
  const Fd socket = stream_socket(AF_INET);
  EXPECT_EQ(-1, connect_to(socket.get(), listener.endpoint(), 5));
  EXPECT_EQ(0, script.calls["connect"]);
}

TEST(ConnectWithTimeout, AttemptThatSucceedsAtOnceDoesNotWait) {
  SocketScript script;
  for (int result : {0, 7}) {
    script.on_connect = [&](int, const sockaddr*, socklen_t) { return result; };
    const Fd socket = stream_socket(AF_INET);
    Endpoint nowhere(AF_INET, 9);
    EXPECT_EQ(result, connect_to(socket.get(), nowhere, 5));
  }
  EXPECT_EQ(0, script.calls["select"]);
}

struct SelectCase {
  const char* name;
  unsigned timeout_s;
  time_t waited_s;
};

TEST(ConnectWithTimeout, WaitsForWritabilityAloneForTheTimeoutInWholeSeconds) {
  const SelectCase rows[] = {
      {"one second", 1, 1},
      {"the longest wait", 100'000'000, 100'000'000},
      {"beyond it", 100'000'001, 100'000'000},
      {"highest number", UINT_MAX, 100'000'000},
  };
  for (const SelectCase& row : rows) {
    const Fd socket = stream_socket(AF_INET);
    SocketScript script;
    script.failing["connect"] = {1};
    script.on_select = [&](int count, fd_set* in, fd_set* out, fd_set* except, timeval* limit) {
      EXPECT_EQ(socket.get() + 1, count);
      EXPECT_EQ(nullptr, in);
      EXPECT_EQ(nullptr, except);
      for (int fd = 0; fd < FD_SETSIZE; ++fd)
        EXPECT_EQ(fd == socket.get(), FD_ISSET(fd, out) != 0) << fd;
      EXPECT_EQ(row.waited_s, limit->tv_sec);
      EXPECT_EQ(0, limit->tv_usec);
      return 0;
    };
    Endpoint nowhere(AF_INET, 9);
    EXPECT_EQ(-1, connect_to(socket.get(), nowhere, row.timeout_s)) << row.name;
    EXPECT_EQ(1, script.calls["select"]);
  }
}

TEST(ConnectWithTimeout, PollWaitsAsSelectDoes) {
  struct PollCase {
    const char* name;
    short events;
    int result;
  };
  const PollCase rows[] = {
      {"writable", POLLOUT, 0},
      {"error pending", POLLERR | POLLHUP, 0},
      {"hung up alone is not writable", POLLHUP, -1},
      {"no such descriptor", POLLNVAL, -1},
  };
  const Fd socket = moved_high(stream_socket(AF_INET));
  if (socket.get() < 0) GTEST_SKIP() << "descriptors above FD_SETSIZE are not to be had";
  for (const PollCase& row : rows) {
    SocketScript script;
    script.failing["connect"] = {1};
    script.on_poll = [&](pollfd* waiting, nfds_t count, int) {
      EXPECT_EQ(1u, count);
      EXPECT_EQ(socket.get(), waiting->fd);
      EXPECT_EQ(POLLOUT, waiting->events);
      waiting->revents = row.events;
      return 1;
    };
    Endpoint nowhere(AF_INET, 9);
    EXPECT_EQ(row.result, connect_to(socket.get(), nowhere, 60)) << row.name;
  }
}

TEST(ConnectWithTimeout, PollWaitsOnBeyondItsOwnLongestWait) {
  const Fd socket = moved_high(stream_socket(AF_INET));
  if (socket.get() < 0) GTEST_SKIP() << "descriptors above FD_SETSIZE are not to be had";
  SocketScript script;
  script.failing["connect"] = {1};
  std::vector<int> limits_ms;
  script.on_poll = [&](pollfd* waiting, nfds_t, int limit_ms) {
    limits_ms.push_back(limit_ms);
    if (limits_ms.size() < 3) return 0;
    waiting->revents = POLLOUT;
    return 1;
  };
  Endpoint nowhere(AF_INET, 9);
  EXPECT_EQ(0, connect_to(socket.get(), nowhere, UINT_MAX));
  EXPECT_EQ((std::vector<int>{INT_MAX, INT_MAX, INT_MAX}), limits_ms);
}

TEST(MakeSocketNonBlocking, KeepsTheOtherFlags) {
  const Fd socket = stream_socket(AF_INET);
  ASSERT_EQ(0, fcntl(socket.get(), F_SETFL, O_APPEND));
  EXPECT_TRUE(ANetworkUtil().makeSocketNonBlocking(socket.get()));
  EXPECT_TRUE(non_blocking(socket.get()));
  EXPECT_NE(0, fcntl(socket.get(), F_GETFL, 0) & O_APPEND);
  EXPECT_TRUE(ANetworkUtil().makeSocketNonBlocking(socket.get())) << "a second time";
}

TEST(MakeSocketNonBlocking, UnreadableFlagsCountAsNone) {
  const Fd socket = stream_socket(AF_INET);
  SocketScript script;
  script.failing["fcntl"] = {1};
  EXPECT_TRUE(ANetworkUtil().makeSocketNonBlocking(socket.get()));
  EXPECT_EQ(std::vector<int>{O_NONBLOCK}, script.status_flags);
}

TEST(MakeSocketNonBlocking, FalseWhenTheFlagsCannotBeSet) {
  for (int fd : {-1, INT_MIN, INT_MAX}) EXPECT_FALSE(ANetworkUtil().makeSocketNonBlocking(fd));
}

}  // namespace
