#pragma once

#include "ui/views/RowScan.h"

#include <QObject>
#include <cstdint>
#include <memory>
#include <vector>

namespace bomparser {

/// Lets a RowScan go on beside the interface thread and tells what it finds, one scan at a time.
/// Nobody waits for a scan that is cancelled; it keeps what it needs alive until it notices.
class RowScanner final : public QObject {
  Q_OBJECT

 public:
  explicit RowScanner(QObject* parent = nullptr);
  ~RowScanner() override;

  /// Cancels the scan that is under way.
  void Start(RowScan scan);
  void Cancel();
  bool IsRunning() const { return m_running != nullptr; }

 signals:
  /// Lines that the filter accepted, in order, and the widest texts so far. The last call of a scan
  /// comes when IsRunning says no already.
  void Found(const std::vector<std::uint32_t>& lines, const bomparser::WidestTexts& widest);

 private:
  struct Run;

  void Collect();

  std::shared_ptr<Run> m_running;
};

}  // namespace bomparser
