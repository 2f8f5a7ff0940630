#include "simulation.h"

#include <QCoroFuture>
#include <QCoroTimer>
#include <algorithm>
#include <filesystem>

#include "backend/next_emission.h"

namespace thalvorn {
namespace {

using namespace std::chrono_literals;

constexpr int kMostFaults = 25;  ///< of a hundred requests
constexpr int kSettlingRounds = 12;
const QString kPassword = QStringLiteral("Fair-Winds-7");

template <class T>
std::map<std::string, std::string> listed(const AppViewModel& model) {
  std::map<std::string, std::string> records;
  for (T record : model.collection<T>().records()) {
    // Each computer shows the parts of a yard period in the order in which they came to it.
    if constexpr (std::is_same_v<T, YardPeriod>) std::ranges::sort(record.workOrders, {}, &WorkOrder::id);
    records[std::string(RecordKind<T>::facts.table) + ' ' + record.id.toString()] = toJson(record, JsonFields::full);
  }
  return records;
}

std::map<std::string, std::string> everything(const AppViewModel& model, bool withHistory = true) {
  std::map<std::string, std::string> all;
  forEachKind([&]<class T>(std::type_identity<T>) {
    if (std::is_same_v<T, ConflictNote> && !withHistory) return;
    if constexpr (!std::is_same_v<T, AccountMember>) all.merge(listed<T>(model));
  });
  return all;
}

/// What was entered is on disk: only then does anybody owe it.
QCoro::Task<void> untilSaved(Saving saving) { co_await saving; }
void saved(Saving saving) { finished(untilSaved(std::move(saving))); }

/// What happens, in order, for a seed that failed: THALVORN_TRACE shows it.
Q_LOGGING_CATEGORY(simulationLog, "thalvorn.simulation")

void tell(const SimulatedClient& client, const std::string& what) {
  qCInfo(simulationLog, "%s at port %d (%zu wait): %s", client.name.c_str(), client.proxy.url().port(),
         client.isRunning() ? static_cast<std::size_t>(client.model->dirtyCount()) : 0, what.c_str());
}

/// Tokens are marked off, so that "e1" is not found in "e12".
std::string marked(int number) { return "[e" + std::to_string(number) + "]"; }

}  // namespace

QCoro::Task<SyncOutcome> syncWhenFree(CloudSession* cloud) {
  SyncManager& sync = cloud->sync();
  while (sync.isSyncing()) co_await nextEmission(&sync, &SyncManager::stateChanged, 60s);
  co_return co_await sync.syncAll(true);
}

QCoro::Task<void> HastyTiming::wait(std::chrono::milliseconds duration) {
  elapsed_ += duration;
  QTimer timer;
  timer.setSingleShot(true);
  timer.start(0);
  co_await timer;
}

// ---- a client
// ---------------------------------------------------------------------------------------------------------------

SimulatedClient::SimulatedClient(const BackendProcess& backend, QString user, std::chrono::seconds clockError,
                                 std::uint32_t seed)
    : proxy(backend.url(), seed),
      email(std::move(user)),
      backend_(backend),
      clock_(Timestamp{}),
      clockError_(clockError) {
  start();
}

void SimulatedClient::start() {
  clock_.set(SystemClock().now() + clockError_);
  cache_ = LocalCache::open(std::filesystem::path(folder_.path().toStdString()) / "store.db").value();
  model = std::make_unique<AppViewModel>(*cache_, clock_);
  cloud = std::make_unique<CloudSession>(*model, BackendConfig::from(proxy.url().toString(), backend_.key()).value(),
                                         clock_, timing_, SyncManager::Options{.deletionDelay = 0s});
  if (!cloud->userID().isEmpty()) model->reloadNow(cloud->userID().toStdString());
}

void SimulatedClient::kill() {
  cloud.reset();
  model.reset();
  cache_.reset();
}

bool SimulatedClient::signIn() {
  if (const auto signedIn = finished(cloud->signIn(email, kPassword)); !signedIn) return false;
  return !model->accountID().empty();
}

bool SimulatedClient::signUp() { return finished(cloud->signUp(email, kPassword)).has_value(); }

// ---- the course of it
// -------------------------------------------------------------------------------------------------------

Simulation::Simulation(const BackendProcess& backend, std::uint32_t seed, ServerAge age)
    : backend_(backend), seed_(seed), age_(age), random_(seed), vessel_(newID()) {}

std::vector<std::string> Simulation::run(int steps) {
  if (!enter()) return {"seed " + std::to_string(seed_) + ": the crew could not sign in"};
  for (int i = 0; i < steps; ++i) step();
  settle();
  compare();
  checkTokens();
  if (age_ == ServerAge::newer &&
      !backend_.execute(
          QStringLiteral("select newer.check_kept('%1')").arg(QString::fromStdString(vessel_.toString()))))
    faults_.emplace_back("what a newer program wrote was lost");
  return faults_;
}

bool Simulation::enter() {
  const auto address = [this](const char* who) {
    return QStringLiteral("%1-%2-%3@example.com")
        .arg(QLatin1String(who))
        .arg(seed_)
        .arg(QString::fromStdString(vessel_.toString()));
  };
  for (const char* who : {"captain", "engineer"}) {
    clients_.push_back(
        std::make_unique<SimulatedClient>(backend_, address(who), std::chrono::seconds(number(600) - 300), random_()));
    clients_.back()->name = who;
    if (clients_.size() == 2 && !finished(clients_[0]->cloud->inviteTeamMember(
                                    clients_[1]->email, QStringLiteral("Engineer"), TeamRole::editor)))
      return false;
    if (!clients_.back()->signUp()) return false;
    // Seats are bought, which a test does in the database's stead.
    if (clients_.size() == 1 && !backend_.setPlan(clients_[0]->model->accountID(), "fleet")) return false;
    if (clients_.size() == 1) finished(clients_[0]->cloud->refreshAccount());
  }
  clients_.push_back(std::make_unique<SimulatedClient>(backend_, address("captain"),
                                                       std::chrono::seconds(number(600) - 300), random_()));
  clients_.back()->name = "captain's second computer";
  if (!clients_.back()->signIn()) return false;
  if (clients_[1]->model->accountID() != clients_[0]->model->accountID()) return false;
  saved(clients_[0]->model->add(Vessel{.id = vessel_, .name = "M/Y Meridian", .engineHours = 100}));
  finished(syncWhenFree(clients_[0]->cloud.get()));
  for (const auto& client : clients_) client->proxy.setFaults(number(kMostFaults + 1));
  return true;
}

void Simulation::step() {
  if (age_ == ServerAge::newer && number(5) == 0 &&
      !backend_.execute(QStringLiteral("select newer.write_task('%1', %2)")
                            .arg(QString::fromStdString(vessel_.toString()))
                            .arg(number(1000))))
    faults_.emplace_back("the newer program cannot write");
  SimulatedClient& client = *clients_[static_cast<std::size_t>(number(static_cast<int>(clients_.size())))];
  const int what = number(20);
  tell(client, what < 11 ? "edits" : what < 15 ? "syncs" : what < 17 ? "pushes" : what == 17 ? "moves" : "is killed");
  if (!client.isRunning()) {
    client.start();
  } else if (what < 11) {
    edit(client);
  } else if (what < 15) {
    finished(client.cloud->sync().syncAll());
  } else if (what < 17) {
    finished(client.cloud->sync().pushChanges());
  } else if (what == 17) {
    client.proxy.setOffline(number(2) == 0);
    tell(client, client.proxy.isOffline() ? "is offline" : "is online");
  } else {
    // In the middle of a run, after a few turns of the loop.
    client.cloud->sync().fullSync();
    for (int turn = number(60); turn > 0; --turn) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    client.kill();
  }
}

Uuid Simulation::newID() {
  Uuid id;
  for (std::uint8_t& byte : id.bytes) byte = static_cast<std::uint8_t>(number(256));
  return id;
}

std::string Simulation::newToken(const SimulatedClient& client, const std::string& what) {
  std::string token = marked(++edits_);
  owed_[token] = client.name + ": " + what;
  tell(client, token + " " + what);
  return token;
}

void Simulation::supersede(const std::string& text) {
  for (auto token = owed_.begin(); token != owed_.end();)
    token = text.find(token->first) == std::string::npos ? std::next(token) : owed_.erase(token);
}

template <class T>
std::vector<T> Simulation::recordsOf(const SimulatedClient& client) const {
  const auto all = client.model->collection<T>().records();
  std::vector<T> records(all.begin(), all.end());
  if (age_ == ServerAge::oldest)
    std::erase_if(records, [&](const T& record) { return made_.at(record.id) != client.name; });
  return records;
}

template <class T>
void Simulation::add(SimulatedClient& client, T record) {
  record.id = newID();
  made_[record.id] = client.name;
  if constexpr (requires { record.vesselID; }) record.vesselID = vessel_;
  saved(client.model->add(std::move(record)));
}

void Simulation::edit(SimulatedClient& client) {
  AppViewModel& model = *client.model;
  const std::vector<MaintenanceTask> tasks = recordsOf<MaintenanceTask>(client);
  const int what = number(18);
  if (tasks.empty() || what < 3) {
    add(client, MaintenanceTask{.title = newToken(client, "new task")});
  } else if (what < 9) {
    changeTask(client, any(tasks));
  } else if (what == 9) {
    const MaintenanceTask task = any(tasks);
    supersede(toJson(task, JsonFields::full));
    deleted_.insert(task.id);
    tell(client, "deletes " + task.id.toString());
    saved(model.remove<MaintenanceTask>(task.id));
  } else if (what == 10 && age_ != ServerAge::oldest && model.vessels().find(vessel_)) {
    Vessel vessel = *model.vessels().find(vessel_);
    vessel.engineHours += number(50);
    supersede(vessel.notes);
    vessel.notes = newToken(client, "vessel notes over " + vessel.notes);
    saved(model.update(vessel));
  } else if (what == 11) {
    ServiceLog log;
    log.taskID = any(tasks).id;
    log.technicianNotes = newToken(client, "log");
    log.completedDate = model.now();
    add(client, std::move(log));
  } else if (what < 14) {
    editElements(client, &YardPeriod::workOrders, &WorkOrder::notes);
  } else if (what < 16) {
    editElements(client, &ShipsLogEntry::tripLog, &TripLogEntry::text);
  } else {
    editPost(client);
  }
}

template <class T, class Element>
void Simulation::editElements(SimulatedClient& client, std::vector<Element> T::* list, std::string Element::* text) {
  const std::vector<T> records = recordsOf<T>(client);
  if (records.empty()) {
    tell(client, "opens " + std::string(RecordKind<T>::facts.table));
    return add(client, T{});
  }
  T record = any(records);
  std::vector<Element>& elements = record.*list;
  const std::string where = std::string(RecordKind<T>::facts.table) + ' ' + record.id.toString();
  const int what = elements.empty() ? 0 : number(5);
  if (what < 2) {
    Element element;
    element.id = newID();
    if constexpr (requires { element.yardPeriodID; }) {
      element.yardPeriodID = record.id;
      element.vesselID = vessel_;
    }
    element.*text = newToken(client, "new in " + where);
    elements.push_back(std::move(element));
  } else {
    const auto place = elements.begin() + number(static_cast<int>(elements.size()));
    supersede((*place).*text);
    if (what < 4) {
      (*place).*text = newToken(client, where + '/' + place->id.toString() + " over " + (*place).*text);
    } else {
      tell(client, "takes out " + place->id.toString() + " of " + where);
      elements.erase(place);
    }
  }
  saved(client.model->update(std::move(record)));
}

void Simulation::editPost(SimulatedClient& client) {
  const std::vector<CrewBoardPost> posts = recordsOf<CrewBoardPost>(client);
  const std::string user = client.cloud->userID().toStdString();
  if (posts.empty() || number(3) == 0)
    return add(client, CrewBoardPost{.userID = user, .body = newToken(client, "new post")});
  CrewBoardPost post = any(posts);
  if (number(2) == 0) {
    supersede(post.body);
    post.body = newToken(client, "post " + post.id.toString() + " over " + post.body);
  } else if (std::ranges::find(post.acknowledgments, user) == post.acknowledgments.end()) {
    tell(client, "acknowledges " + post.id.toString());
    post.acknowledgments.push_back(user);
    acknowledged_.emplace(post.id, user);
  }
  saved(client.model->update(std::move(post)));
}

void Simulation::changeTask(SimulatedClient& client, MaintenanceTask task) {
  std::string& field = number(3) == 0 ? task.title : task.notes;
  supersede(field);
  field = newToken(client, "task " + task.id.toString() + " over " + field);
  if (number(4) == 0) task.priority = task.priority == TaskPriority::high ? TaskPriority::low : TaskPriority::high;
  saved(client.model->update(task));
}

// ---- the end
// ------------------------------------------------------------------------------------------------------------------

bool Simulation::settled(const SimulatedClient& client) const {
  const AppViewModel& model = *client.model;
  const bool keepsHistory = age_ == ServerAge::older || age_ == ServerAge::oldest;
  return model.dirtyCount() == (keepsHistory ? model.dirtyCount(RecordKind<ConflictNote>::facts.suffix) : 0);
}

void Simulation::settle() {
  for (const auto& client : clients_) {
    client->proxy.setFaults(0);
    client->proxy.setOffline(false);
    if (!client->isRunning()) client->start();
    if (client->cloud->needsSignIn()) client->signIn();
  }
  for (int round = 0; round < kSettlingRounds; ++round) {
    // What goes up in this round, the others see in the next.
    bool done = std::ranges::all_of(clients_, [this](const auto& client) { return settled(*client); });
    for (const auto& client : clients_) {
      const SyncOutcome outcome = finished(syncWhenFree(client->cloud.get()));
      done = done && outcome == SyncOutcome::complete && settled(*client);
    }
    if (done) return;
  }
  for (const auto& client : clients_) {
    std::string what = "does not settle: " + std::to_string(client->model->dirtyCount()) + " wait";
    for (const SyncProblem& problem : client->cloud->sync().problems())
      what += "; " + problem.table + " " + problem.record + ": " + problem.text;
    faults_.push_back(std::move(what));
  }
}

void Simulation::compare() {
  // What a new computer sees is what the server holds.
  SimulatedClient fresh(backend_, clients_[0]->email, 0s, 1);
  if (!fresh.signIn() || finished(syncWhenFree(fresh.cloud.get())) != SyncOutcome::complete) {
    faults_.push_back("a new computer cannot read the account");
    return;
  }
  const bool sharesHistory = age_ == ServerAge::current || age_ == ServerAge::newer;
  const auto server = everything(*fresh.model, sharesHistory);
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    const auto here = everything(*clients_[i]->model, sharesHistory);
    if (here == server) continue;
    for (const auto& [key, json] : server)
      if (const auto own = here.find(key); own == here.end() || own->second != json)
        faults_.push_back("client " + std::to_string(i) + " has " + (own == here.end() ? "nothing" : own->second) +
                          " for " + key + " " + json);
    for (const auto& [key, json] : here)
      if (!server.contains(key)) faults_.push_back("only client " + std::to_string(i) + " has " + key + " " + json);
  }
}

void Simulation::checkTokens() {
  std::string all;
  for (const auto& client : clients_)
    for (const auto& [key, json] : everything(*client->model)) all += json + "\n";
  for (const auto& [token, what] : owed_)
    if (all.find(token) == std::string::npos) faults_.push_back("lost " + token + ", " + what);
  if (age_ != ServerAge::oldest) {
    for (const auto& [post, user] : acknowledged_) {
      const CrewBoardPost* shown = clients_[0]->model->crewBoardPosts().find(post);
      if (!shown || std::ranges::find(shown->acknowledgments, user) == shown->acknowledgments.end())
        faults_.push_back("lost that " + user + " acknowledged post " + post.toString());
    }
  }
  if (!faults_.empty()) qCInfo(simulationLog, "at the end\n%s", all.c_str());
  for (const Uuid& id : deleted_)
    if (clients_[0]->model->tasks().find(id)) faults_.push_back("came back: task " + id.toString());
}

}  // namespace thalvorn
