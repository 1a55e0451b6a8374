#include "ui/views/RowScanner.h"

#include <QMetaObject>
#include <QThreadPool>
#include <QTimer>
#include <atomic>
#include <mutex>
#include <new>
#include <utility>

namespace bomparser {

/// What the two threads share.
struct RowScanner::Run {
  explicit Run(RowScan toRun) : scan(std::move(toRun)) {}

  void Work();
  void Publish(const std::vector<std::uint32_t>& found, bool last);

  RowScan scan;  // The working thread's alone.
  std::atomic<bool> cancelled = false;

  std::mutex mutex;
  // Under the mutex.
  RowScanner* owner = nullptr;  // Null once nobody listens.
  bool told = false;            // The owner is going to collect what is here.
  bool done = false;
  std::vector<std::uint32_t> lines;
  WidestTexts widest;
};

void RowScanner::Run::Work() {
  constexpr std::uint32_t kLines = 4096;
  const auto mayGoOn = [this] { return !cancelled.load(std::memory_order_relaxed); };
  try {
    while (mayGoOn()) {
      scan.Step(kLines, mayGoOn);
      Publish(scan.TakeLines(), scan.IsDone());
      if (scan.IsDone()) return;
    }
  } catch (const std::bad_alloc&) {
    Publish({}, true);  // What has been found so far stays.
  }
}

void RowScanner::Run::Publish(const std::vector<std::uint32_t>& found, bool last) {
  const std::lock_guard lock(mutex);
  if (owner == nullptr) return;
  lines.insert(lines.end(), found.begin(), found.end());
  widest = scan.GetWidest();
  done = last;
  // Widths alone are of no use before all are known.
  if (told || (lines.empty() && !last)) return;
  told = true;
  QMetaObject::invokeMethod(owner, &RowScanner::Collect, Qt::QueuedConnection);
}

RowScanner::RowScanner(QObject* parent) : QObject(parent) {}

RowScanner::~RowScanner() { Cancel(); }

void RowScanner::Start(RowScan scan) {
  Cancel();
  m_running = std::make_shared<Run>(std::move(scan));
  m_running->owner = this;
  // Behind what waits to be done here: the first rows are painted meanwhile.
  QTimer::singleShot(0, this, [run = m_running] {
    if (!run->cancelled) QThreadPool::globalInstance()->start([run] { run->Work(); });
  });
}

void RowScanner::Cancel() {
  const std::shared_ptr<Run> run = std::exchange(m_running, nullptr);
  if (!run) return;
  run->cancelled = true;
  const std::lock_guard lock(run->mutex);
  run->owner = nullptr;
}

void RowScanner::Collect() {
  const std::shared_ptr<Run> run = m_running;
  if (!run) return;
  std::vector<std::uint32_t> lines;
  WidestTexts widest;
  {
    const std::lock_guard lock(run->mutex);
    if (!run->told) return;  // The call was of a scan that was cancelled meanwhile.
    run->told = false;
    lines.swap(run->lines);
    widest = run->widest;
    if (run->done) m_running = nullptr;
  }
  emit Found(lines, widest);
}

}  // namespace bomparser
