// tests/torture/session_rows.cpp: session/loggedonusers.h under torture.
#include <utility>

#include "session/loggedonusers.h"
#include "tests/support/torture.h"
#include "tests/torture/machine.h"

namespace {

using namespace quillon_com::orb::session;
using orbtest::Fault;
using orbtest::Machine;
using orbtest::Trial;
using Users = std::set<std::string>;

const std::string kBefore = "what was passed, a text of some length";

const std::vector<Fault> without_memory = {{"operator new", "no memory"}};

std::string text_of(const Users& users) {
  std::string text;
  for (const std::string& user : users) text += user + ";";
  return text;
}

// Jane's domain is that of her group. A failure on the way there, memory that runs out once among
// them, leads to the directory service, which this system does not have, and makes her local.
std::vector<Fault> scanning(const char* network, const char* local, const char* none,
                            const char* no_memory) {
  return {{"pthread_mutex_lock", network},
          {"pthread_mutex_lock#1 onwards", no_memory},
          {"pthread_mutex_lock#2 onwards", no_memory},
          {"pthread_mutex_lock#3 onwards", no_memory},
          {"pthread_mutex_unlock", network},
          {"pthread_mutex_unlock#1 onwards", no_memory},
          {"pthread_mutex_unlock#2 onwards", no_memory},
          {"pthread_mutex_unlock#3 onwards", no_memory},
          {"getutxent#1", none},
          {"getutxent#1 onwards", no_memory},
          {"getutxent#2", network},
          {"getpwnam_r", local},
          {"getpwnam_r onwards", no_memory},
          {"getgrgid_r", local},
          {"getgrgid_r onwards", no_memory},
          {"operator new", no_memory},  // below: the group's name, and its two parts
          {"operator new#1", local},
          {"operator new#1 onwards", no_memory},
          {"operator new#2", local},
          {"operator new#2 onwards", no_memory},
          {"operator new#3", local},
          {"operator new#3 onwards", no_memory},
          {"operator new#4", local},
          {"operator new#4 onwards", no_memory}};
}

const orbtest::Tortures users({
    {"quillon_com::orb::session::CollectLoggedonUsers(std::set<std::string, "
     "std::less<std::string>, std::allocator<std::string>>&, std::set<std::string, "
     "std::less<std::string>, std::allocator<std::string>>&, bool)",
     "", "done corp\\jane; ",
     [](Trial& trial) {
       const Machine machine;
       Users network;
       Users local;
       trial.call([&] { CollectLoggedonUsers(network, local, false); });
       trial.answer(trial.answer() + (" " + text_of(network) + " " + text_of(local)));
     },
     scanning("done corp\\jane; ", "done  jane;", "done  ", "no memory  ")},
    {"quillon_com::orb::session::CollectComaSepLoggedonUsers(std::string&, std::string&, bool)", "",
     "done corp\\jane",
     [](Trial& trial) {
       const Machine machine;
       std::string network = kBefore;
       std::string local = kBefore;
       trial.call([&] { CollectComaSepLoggedonUsers(network, local, false); });
       for (const std::string& list : {network, local})
         if (list != kBefore) trial.answer(trial.answer() + (" " + list));
     },
     scanning("done corp\\jane", "done jane", "done", "no memory")},
    {"quillon_com::orb::session::CollectAllLoggedonUsers(std::string&)", "", "done corp\\jane",
     [](Trial& trial) {
       const Machine machine;
       std::string list = kBefore;
       trial.call([&] { CollectAllLoggedonUsers(list); });
       trial.answer(trial.answer() + (list == kBefore ? "" : " " + list));
     },
     scanning("done corp\\jane", "done jane", "done ", "no memory")},
    {"quillon_com::orb::session::FindDomainName(std::string const&, std::string&)",
     "",
     "1 corp",
     [](Trial& trial) {
       const Machine machine;
       std::string domain = "before";
       const std::string user = "Jane";
       trial.call([&] { return FindDomainName(user, domain); });
       trial.answer(trial.answer() + (" " + domain));
     },
     {{"getpwnam_r", "0 before"}, {"getgrgid_r", "0 before"}, {"operator new", "0 before"}}},
});

const orbtest::Tortures texts({
    {"quillon_com::orb::session::parseFullUserName(std::wstring&, std::wstring&, std::wstring&)",
     "", "done, a domain, a user",
     [](Trial& trial) {
       std::wstring name = L"a domain\\a user";
       std::wstring domain;
       std::wstring user;
       trial.call([&] { parseFullUserName(name, domain, user); });
       if (!domain.empty() || !user.empty())
         trial.answer(trial.answer() +
                      (", " + orbtest::answer_text(domain) + ", " + orbtest::answer_text(user)));
     },
     without_memory},
    {"quillon_com::orb::session::split(std::string const&, char, std::vector<std::string, "
     "std::allocator<std::string>>&)",
     "",
     "done 3",
     [](Trial& trial) {
       const std::string text = "a piece of text of its own|another piece of text";
       std::vector<std::string> parts = {kBefore};
       trial.call([&] { split(text, '|', parts); });
       trial.answer(trial.answer() + (" " + std::to_string(parts.size())));
     },
     {{"operator new", "no memory 1"}}},
    {"quillon_com::orb::session::toLower(std::string&)", "", "done",
     [](Trial& trial) {
       std::string text = "A USER WITH A NAME OF SOME LENGTH";
       trial.call([&] { toLower(text); });
     }},
    {"quillon_com::orb::session::myfd()", "", "made", [](Trial& trial) { trial.call(myfd); }},
});

}  // namespace
