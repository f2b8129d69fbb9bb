#include "faults/faulty_runs.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <future>
#include <mutex>
#include <new>
#include <sstream>

#include "faults/fault_plan.h"
#include "registry/hive_tools.h"
#include "text/error.h"

namespace quillbox {
namespace fs = std::filesystem;
namespace {

constexpr unsigned kWorkers = 2;
constexpr std::uint32_t kReadersEvery = 16;  ///< runs from one whose hives other programs read to the next
constexpr std::size_t kMaxShown = 12;
#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint32_t kStep = 7;  ///< every run takes several times as long
#else
constexpr std::uint32_t kStep = 1;
#endif

std::string ReadAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string HiveContent(const std::string& bytes) {
  try {
    const Hive hive = Hive::Load(Bytes(bytes.begin(), bytes.end()), "hive");
    std::string text;
    for (const std::string& line : Lines(hive)) text += line + "\n";
    return text;
  } catch (const Error& error) {
    return "damaged: " + Describe(error);
  }
}

/// A plan that this process and those that it starts see.
class SharedPlan {
 public:
  explicit SharedPlan(fs::path file) : file_(std::move(file)) {
    const int fd = open(file_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool sized = fd >= 0 && ftruncate(fd, sizeof(FaultPlan)) == 0;
    void* mapped = sized ? mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0) : MAP_FAILED;
    if (fd >= 0) close(fd);
    if (mapped == MAP_FAILED) throw std::system_error(errno, std::generic_category(), file_.string());
    plan_ = new (mapped) FaultPlan();
  }
  ~SharedPlan() { munmap(plan_, sizeof(FaultPlan)); }
  SharedPlan(const SharedPlan&) = delete;
  SharedPlan& operator=(const SharedPlan&) = delete;

  FaultPlan* operator->() const { return plan_; }
  const fs::path& File() const { return file_; }

 private:
  fs::path file_;
  FaultPlan* plan_ = nullptr;
};

std::string Quoted(const fs::path& path) {
  return "'" + path.string() + "'";
}

bool IsHive(const std::string& file) {
  return file.starts_with("regf");
}

std::vector<std::string> OtherReadersFaults(const fs::path& disk) {
  std::vector<std::string> faults;
  for (const auto& entry : fs::recursive_directory_iterator(disk)) {
    if (!entry.is_regular_file() || !IsHive(ReadAll(entry.path()).substr(0, 4))) continue;
    for (const char* reader : {"hivexml", "reglookup"}) {
      if (RunShell(std::string("command -v ") + reader + " >/dev/null") != 0) continue;
      if (RunShell(std::string(reader) + " " + Quoted(entry.path()) + " >/dev/null 2>&1") != 0) {
        faults.push_back(std::string(reader) + " cannot read " + entry.path().string());
      }
    }
  }
  return faults;
}

}  // namespace

int RunShell(const std::string& command) {
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

DiskContent ContentOf(const fs::path& folder) {
  DiskContent content;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = fs::relative(entry.path(), folder).string();
    if (entry.is_directory()) {
      content[name] = "folder";
      continue;
    }
    std::string bytes = ReadAll(entry.path());
    content[name] = IsHive(bytes) ? HiveContent(bytes) : std::move(bytes);
  }
  return content;
}

bool Holds(const DiskContent& content, const DiskContent& expected) {
  return std::all_of(expected.begin(), expected.end(), [&](const auto& file) {
    const auto found = content.find(file.first);
    return found != content.end() && found->second == file.second;
  });
}

FaultyRuns::FaultyRuns(fs::path prepared, CommandFor command, CommandFor nextStart)
    : prepared_(std::move(prepared)),
      command_(std::move(command)),
      nextStart_(std::move(nextStart)),
      before_(ContentOf(prepared_)) {
  const FaultyRun whole = Run(0, Broken::Once, temp_ / "whole");
  EXPECT_EQ(whole.exitCode, 0) << whole.out << whole.err;
  after_ = whole.disk;
  calls_ = whole.failAt;
}

FaultyRun FaultyRuns::Run(std::uint32_t failAt, Broken how, const fs::path& work) const {
  const fs::path disk = work / "disk";
  fs::remove_all(work);
  fs::create_directories(work);
  if (RunShell("cp -a " + Quoted(prepared_) + " " + Quoted(disk)) != 0) throw std::runtime_error("cp failed");
  SharedPlan plan(work / "plan");
  plan->failAt = failAt;
  plan->andAllAfter = how == Broken::FromNow ? 1 : 0;
  plan->code = how == Broken::FromNow ? ENOSPC : EIO;

  const std::string environment = "env LD_PRELOAD='" QUILLBOX_FAULT_LIBRARY "' " + std::string(kFaultPlanVariable) +
                                  "=" + Quoted(plan.File()) + " " + kFaultRootVariable + "=" +
                                  Quoted(fs::canonical(disk)) + " ASAN_OPTIONS=verify_asan_link_order=0 ";
  FaultyRun run;
  run.failAt = failAt;
  run.exitCode =
      RunShell("cd " + Quoted(work) + " && timeout 60 " + environment + command_(disk, work / "state") + " >out 2>err");
  run.out = ReadAll(work / "out");
  run.err = ReadAll(work / "err");
  run.failed = plan->firstFailed.data();
  if (nextStart_) {
    const std::string log = Quoted(work / "next");
    if (RunShell(nextStart_(disk, work / "state") + " >" + log + " 2>&1") != 0) {
      run.err += "\nthe next start: " + ReadAll(work / "next");
    }
  }
  run.disk = ContentOf(disk);
  if (failAt == 0) run.failAt = plan->calls;
  return run;
}

std::vector<std::string> FaultyRuns::FaultsOf(const FaultyRun& run) const {
  std::vector<std::string> faults;
  for (const auto& [name, content] : run.disk) {
    const auto before = before_.find(name);
    const auto after = after_.find(name);
    if (before == before_.end() && after == after_.end()) {
      faults.push_back("left behind: " + name);
    } else if ((before == before_.end() || before->second != content) &&
               (after == after_.end() || after->second != content)) {
      faults.push_back("neither as before nor as after: " + name + " " + content.substr(0, 80));
    }
  }
  for (const auto& [name, content] : before_) {
    if (!run.disk.contains(name) && after_.contains(name)) faults.push_back("gone: " + name);
  }
  return faults;
}

void FaultyRuns::Try(Broken how, const std::function<std::vector<std::string>(const FaultyRun&)>& check) const {
  std::atomic<std::uint32_t> next = 1;
  std::mutex mutex;
  std::map<std::uint32_t, std::string> wrong;
  const auto work = [&](unsigned worker) {
    const fs::path folder = temp_ / ("worker" + std::to_string(worker));
    for (std::uint32_t failAt = next.fetch_add(kStep); failAt <= calls_; failAt = next.fetch_add(kStep)) {
      const FaultyRun run = Run(failAt, how, folder);
      std::vector<std::string> faults = FaultsOf(run);
      for (std::string& fault : check(run)) faults.push_back(std::move(fault));
      if (failAt % kReadersEvery == 0) {
        for (std::string& fault : OtherReadersFaults(folder / "disk")) faults.push_back(std::move(fault));
      }
      if (faults.empty()) continue;
      std::string text = "call " + std::to_string(failAt) + " (" + run.failed + "):";
      for (const std::string& fault : faults) text += "\n  " + fault;
      text += "\n  exit " + std::to_string(run.exitCode) + "; " + run.out + run.err;
      const std::lock_guard lock(mutex);
      wrong[failAt] = text;
    }
  };
  std::vector<std::future<void>> workers;
  for (unsigned worker = 0; worker < kWorkers; ++worker) {
    workers.push_back(std::async(std::launch::async, work, worker));
  }
  for (std::future<void>& worker : workers) worker.get();

  std::size_t shown = 0;
  for (const auto& [failAt, text] : wrong) {
    if (++shown <= kMaxShown) ADD_FAILURE() << text;
  }
  EXPECT_TRUE(wrong.empty()) << wrong.size() << " of " << calls_ << " calls";
}

}  // namespace quillbox
