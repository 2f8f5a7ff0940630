// One durable edit of one record, in a small and in a large collection, beside one fdatasync of 4 KiB; and what edits
// wait while the journal is folded.

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <future>
#include <random>

#include "bench/figures.h"
#include "store/local_cache.h"

namespace {

using namespace thalvorn;
using bench::Samples;

constexpr std::size_t kSmall = 100;
constexpr std::size_t kLarge = 100'000;
constexpr int kSamples = 1500;

[[noreturn]] void stop(const std::string& message) {
  fmt::print(stderr, "{}\n", message);
  std::exit(1);
}

/// Overwrites 4 KiB in place and makes that durable: the least that any durable edit costs.
class Floor {
 public:
  explicit Floor(const std::filesystem::path& file)
      : descriptor_(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    for (int block = 0; block < kBlocks; ++block) write(block);
    ::fsync(descriptor_);
  }
  ~Floor() { ::close(descriptor_); }
  Floor(const Floor&) = delete;
  Floor& operator=(const Floor&) = delete;
  void once() {
    write(next_++ % kBlocks);
    if (::fdatasync(descriptor_) != 0) stop("fdatasync failed");
  }

 private:
  static constexpr int kBlocks = 256;
  void write(int block) {
    if (::pwrite(descriptor_, bytes_.data(), bytes_.size(), block * 4096L) < 0) stop("cannot write");
  }
  int descriptor_;
  int next_ = 0;
  std::string bytes_ = std::string(4096, 'x');
};

/// A task in its JSON form, some 450 bytes.
std::string taskJson(const Uuid& id, std::size_t version) {
  return fmt::format(
      R"({{"id":"{}","vesselID":"6f1c2d4e-0000-4000-8000-000000000001","title":"Main engine: change oil and filters",)"
      R"("notes":"Check the oil for metal. Record the meter reading, the quantity drained and the part numbers used. {}",)"
      R"("category":"Engine & Propulsion","triggerType":"Both","hourSource":"Main Engine","dueDate":"2026-05-01T08:00:00Z",)"
      R"("recurringDays":180,"dueAtEngineHours":4812,"recurringEngineHours":250,"isCompleted":false,"photoData":[],)"
      R"("photoPaths":[]}})",
      id.toString(), version);
}

/// A store with a collection of a given size and edits of random records of it.
class Fleet {
 public:
  Fleet(const std::filesystem::path& file, std::size_t size) {
    LocalCache::Options options;
    options.foldAfterEdits = options.foldAfterBytes = 1'000'000'000;
    options.foldIdle = std::chrono::hours(1);
    auto opened = LocalCache::open(file, options);
    if (!opened) stop(opened.error().message);
    cache_ = std::move(*opened);
    std::vector<std::string> records;
    records.reserve(size);
    for (std::size_t n = 0; n < size; ++n) {
      ids_.push_back(Uuid::random());
      records.push_back(taskJson(ids_.back(), 0));
    }
    wait([&](const auto& done) { cache_->replaceAll("user", {{"_tasks", std::move(records)}}, done); });
  }

  void edit() {
    wait([this](const auto& done) { cache_->append(nextEdit(), done); });
  }
  void queueEdit() {
    cache_->append(nextEdit(), [](const auto&) {});
  }
  void flush() { cache_->flush(); }
  void markAllSent() {
    std::vector<SentRecord> sent;
    for (const Uuid& id : ids_) sent.push_back({"_tasks", id, static_cast<Revision>(version_) + 1'000'000});
    wait([&](const auto& done) { cache_->markSent("user", std::move(sent), done); });
  }
  template <class Meanwhile>
  void foldWhile(Meanwhile meanwhile) {
    const auto folded = std::make_shared<std::promise<void>>();
    auto future = folded->get_future();
    cache_->foldNow([folded](const auto& outcome) {
      if (!outcome) stop(outcome.error().message);
      folded->set_value();
    });
    while (future.wait_for(std::chrono::seconds(0)) != std::future_status::ready) meanwhile();
  }

 private:
  JournalEntry nextEdit() {
    const Uuid& id = ids_[random_() % ids_.size()];
    ++version_;
    return {.prefix = "user",
            .at = {},
            .label = "Edit “Main engine: change oil and filters”",
            .changes = {
                {.suffix = "_tasks", .id = id, .before = taskJson(id, version_ - 1), .after = taskJson(id, version_)}}};
  }
  template <class Operation>
  void wait(Operation operation) {
    const auto promise = std::make_shared<std::promise<void>>();
    operation([promise](const auto& outcome) {
      if (!outcome) stop(outcome.error().message);
      promise->set_value();
    });
    promise->get_future().wait();
  }

  std::unique_ptr<LocalCache> cache_;
  std::vector<Uuid> ids_;
  std::size_t version_ = 0;
  std::mt19937_64 random_{7};
};

/// Bytes this process has handed to the system to write.
double bytesWritten() {
  std::ifstream io("/proc/self/io");
  for (std::string key, value; io >> key >> value;)
    if (key == "wchar:") return std::stod(value);
  return 0;
}

}  // namespace

int main() {
  std::string name = (std::filesystem::temp_directory_path() / "thalvorn-bench-XXXXXX").string();
  const std::filesystem::path folder = ::mkdtemp(name.data());
  {
    Floor floor(folder / "floor");
    Fleet small(folder / "small.db", kSmall);
    Fleet large(folder / "large.db", kLarge);
    for (int warm = 0; warm < 50; ++warm) {
      floor.once();
      small.edit();
      large.edit();
    }
    Samples sync;
    Samples in_small;
    Samples in_large;
    for (int n = 0; n < kSamples; ++n) {
      sync.time([&] { floor.once(); });
      in_small.time([&] { small.edit(); });
      in_large.time([&] { large.edit(); });
    }
    bench::printFigure("durable edit among 100,000, p50", bench::microseconds(in_large.median()),
                       "one fdatasync of 4 KiB: " + bench::microseconds(sync.median()),
                       in_large.median() / sync.median(), 4);
    bench::printFigure("durable edit among 100,000, p50", bench::microseconds(in_large.median()),
                       "the same among 100: " + bench::microseconds(in_small.median()),
                       in_large.median() / in_small.median(), 1.2);

    constexpr int counted = 400;
    const double before = bytesWritten();
    for (int n = 0; n < counted; ++n) large.edit();
    const double per_edit = (bytesWritten() - before) / counted / 1024;
    bench::printFigure("written per edit", fmt::format("{:.1f} KiB", per_edit), "16 KiB", per_edit / 16, 1);

    Samples at_rest;
    Samples folding;
    double folded_bytes = 0;
    double folded_edits = 0;
    double fold_seconds = 0;
    constexpr int queued = 4096;
    for (int round = 0; round < 3; ++round) {
      for (int n = 0; n < kSamples / 2; ++n) {
        at_rest.time([&] { large.edit(); });
      }
      for (int n = 0; n < queued; ++n) large.queueEdit();
      large.flush();
      const double bytes = bytesWritten();
      const std::size_t samples = folding.count();
      const auto begin = std::chrono::steady_clock::now();
      large.foldWhile([&] { folding.time([&] { large.edit(); }); });
      fold_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
      folded_bytes += bytesWritten() - bytes - static_cast<double>(folding.count() - samples) * per_edit * 1024;
      folded_edits += queued + kSamples / 2.0;
      large.markAllSent();
    }
    bench::printFigure("durable edit while folding, p99", bench::microseconds(folding.percentile(0.99)),
                       "the same at rest: " + bench::microseconds(at_rest.percentile(0.99)),
                       folding.percentile(0.99) / at_rest.percentile(0.99), 4);
    bench::printReport(
        "durable edit while folding, p50", bench::microseconds(folding.median()),
        fmt::format("{} edits meanwhile; at rest {}", folding.count(), bench::microseconds(at_rest.median())));
    bench::printReport(
        "folding", fmt::format("{:.1f} KiB per folded edit", folded_bytes / folded_edits / 1024),
        fmt::format("{:.0f} edits into 100,000 records, {:.2f} s each time", folded_edits / 3, fold_seconds / 3));
  }
  std::error_code error;
  std::filesystem::remove_all(folder, error);
}
