#pragma once

#include <QCoroTask>
#include <QTemporaryDir>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "backend_process.h"
#include "faulty_proxy.h"
#include "sync/cloud_session.h"

namespace thalvorn {

/// Waits end at the next turn of the event loop: what is tried is the order of things, not their pace.
class HastyTiming : public Timing {
 public:
  std::chrono::milliseconds elapsed() const override { return elapsed_; }
  QCoro::Task<void> wait(std::chrono::milliseconds duration) override;

 private:
  std::chrono::milliseconds elapsed_{0};
};

/// Runs the event loop until the task is over.
template <class T>
T finished(QCoro::Task<T> task) {
  return QCoro::waitFor(std::move(task));
}

/// A full run of every table, once the run under way is over.
QCoro::Task<SyncOutcome> syncWhenFree(CloudSession* cloud);

/// One computer with its own store, clock and way to the backend.
class SimulatedClient {
 public:
  SimulatedClient(const BackendProcess& backend, QString email, std::chrono::seconds clockError, std::uint32_t seed);

  ~SimulatedClient() { kill(); }

  /// Starts the program: opens the store and the fleet of who is signed in.
  void start();
  /// Ends it wherever it is.
  void kill();
  bool isRunning() const { return cloud != nullptr; }
  bool signIn();
  bool signUp();

  FaultyProxy proxy;
  std::unique_ptr<AppViewModel> model;
  std::unique_ptr<CloudSession> cloud;
  const QString email;
  std::string name;

 private:
  const BackendProcess& backend_;
  QTemporaryDir folder_;
  FixedClock clock_;
  std::chrono::seconds clockError_;
  HastyTiming timing_;
  std::unique_ptr<LocalCache> cache_;
};

/// How old the server is, beside a program of today.
enum class ServerAge : std::uint8_t {
  current,
  older,   ///< lacks the newest migration: what was not taken in a conflict stays on the computer that noted it
  oldest,  ///< lacks those of sync: works for people who do not edit the same record
  newer    ///< a newer program writes into it what this one does not know (newer_schema.sql)
};

/// Several clients of one account that work, lose the network, are killed and come back, as a seed has it. At the end
/// everything must agree, and every edit must be there or in the conflict history.
class Simulation {
 public:
  Simulation(const BackendProcess& backend, std::uint32_t seed, ServerAge age);

  /// What is wrong at the end; empty when all is well.
  std::vector<std::string> run(int steps);

 private:
  bool enter();
  void step();
  void edit(SimulatedClient& client);
  /// What this client may change: what it made, where the server does not guard one edit against another.
  template <class T>
  std::vector<T> recordsOf(const SimulatedClient& client) const;
  template <class T>
  T any(const std::vector<T>& records) {
    return records[static_cast<std::size_t>(number(static_cast<int>(records.size())))];
  }
  template <class T>
  void add(SimulatedClient& client, T record);
  void changeTask(SimulatedClient& client, MaintenanceTask task);
  /// Adds an element to a list of one of the client's records, changes one, or takes one out.
  template <class T, class Element>
  void editElements(SimulatedClient& client, std::vector<Element> T::* list, std::string Element::* text);
  void editPost(SimulatedClient& client);
  /// From the seed, so that ties fall alike each time.
  Uuid newID();
  std::string newToken(const SimulatedClient& client, const std::string& what);
  void supersede(const std::string& text);
  bool settled(const SimulatedClient& client) const;
  void settle();
  void compare();
  void checkTokens();
  int number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

  const BackendProcess& backend_;
  std::uint32_t seed_;
  ServerAge age_;
  std::mt19937 random_;
  std::vector<std::unique_ptr<SimulatedClient>> clients_;
  Uuid vessel_;
  int edits_ = 0;
  /// What was entered, and has not been replaced by someone who saw it: by token, where.
  std::map<std::string, std::string> owed_;
  std::set<Uuid> deleted_;            ///< by someone who meant it
  std::map<Uuid, std::string> made_;  ///< by whom
  /// Users who have acknowledged a post, each a user id in that post.
  std::set<std::pair<Uuid, std::string>> acknowledged_;
  std::vector<std::string> faults_;
};

}  // namespace thalvorn
