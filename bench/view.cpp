// What users wait for in the input file view: the first rows, a turn of the wheel, a check box.
// Prints a line for each of two files that differ in length only, and how often longer the longer
// one takes; then what the view keeps per row.

#include "bench/Inputs.h"
#include "bench/TemporaryFiles.h"
#include "entry/CTNFileParserEngine.h"
#include "ui/controls/Ids.h"
#include "ui/views/CTNInFilePropPage.h"

#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QEvent>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <malloc.h>
#include <string>
#include <vector>

namespace bomparser::bench {
namespace {

std::string FirstLines(const std::string& text, std::size_t lines) {
  std::size_t end = 0;
  for (; lines > 0; --lines)
    end = text.find('\n', end) + 1;
  return text.substr(0, end);
}

std::size_t MemoryInUse() {
  const struct mallinfo2 memory = mallinfo2();
  return memory.uordblks + memory.hblkhd;
}

/// The page over an applied file.
class Setting {
 public:
  bool Open(const std::string& document, const std::string& text) {
    std::string error;
    bool cancelled = false;
    m_engine.SetSideCopy(SideCopy::No);
    if (!m_engine.LoadTemplate(m_files.Write("template.xml", document)) ||
        !m_engine.OpenInputFile(m_files.Write("input.txt", text), error) ||
        !m_engine.ApplyTemplate(error, cancelled, ShowProgress::No)) {
      std::fprintf(stderr, "cannot apply: %s\n", error.c_str());
      return false;
    }
    QObject::connect(&m_page, &CTNInFilePropPage::DisplayOptionsChanged, &m_page,
                     &CTNInFilePropPage::ApplyDisplayOptions);
    m_page.resize(1000, 700);
    m_page.show();
    m_list.setFocus();
    QApplication::processEvents();
    return true;
  }

  /// Milliseconds until what `work` does is painted: the lower quartile of so many times.
  double Time(
      int times, const std::function<void()>& work, const std::function<void()>& prepare = [] {}) {
    std::vector<double> taken;
    for (int i = 0; i < times; ++i) {
      prepare();
      WaitForScan();
      QElapsedTimer timer;
      timer.start();
      work();
      m_list.viewport()->repaint();  // Now, not at the next turn of the display.
      taken.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(taken.begin(), taken.end());
    return taken[static_cast<std::size_t>(times / 4)];
  }
  void WaitForScan() const {
    do {
      QApplication::processEvents();
    } while (m_list.GetModel().IsScanning() || m_list.GetModel().HasLateRows());
  }

  /// Keys and their shortcuts are the active window's.
  void Activate() {
    m_page.activateWindow();
    m_list.setFocus();
    QApplication::processEvents();
  }
  void Fill() {
    m_list.SetInputFile(m_engine.GetInputFile());
    m_list.Fill();
  }
  void Empty() { m_list.SetInputFile(nullptr); }
  void Wheel() {
    const QPointF place(100, 100);
    QWheelEvent event(place, m_list.viewport()->mapToGlobal(place), {}, QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_list.viewport(), &event);
  }
  void Key(Qt::Key key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&m_list, &event);
  }
  void Click(Ctrl box) { FindControl<QCheckBox>(m_page, box)->click(); }
  void ScrollTo(double part) {
    QScrollBar& bar = *m_list.verticalScrollBar();
    bar.setValue(static_cast<int>(part * bar.maximum()));
  }
  CTNParserInFileListCtrl& GetList() { return m_list; }
  const CTNParserInFile& GetFile() const { return *m_engine.GetInputFile(); }
  int GetRows() const { return m_list.GetModel().rowCount(); }

 private:
  TemporaryFiles m_files;
  CTNFileParserEngine m_engine;
  CTNInFilePropPage m_page;
  CTNParserInFileListCtrl& m_list = m_page.GetList();
};

struct Figure {
  const char* name;
  std::function<double(Setting&)> measure;
};

std::vector<Figure> MakeFigures() {
  constexpr int kTimes = 30;
  constexpr int kSteps = 160;
  const auto wheel = [](Setting& view) { return view.Time(kSteps, [&] { view.Wheel(); }); };
  const auto jump = [](double part) {
    return [part](Setting& view) { return view.Time(1, [&] { view.ScrollTo(part); }); };
  };
  const auto click = [](Ctrl box) {
    return [box](Setting& view) { return view.Time(kTimes, [&] { view.Click(box); }); };
  };
  return {
      {"applied to first paint",
       [](Setting& view) {
         return view.Time(
             kTimes, [&] { view.Fill(); }, [&] { view.Empty(); });
       }},
      {"widest rows known",
       [](Setting& view) {
         QElapsedTimer timer;
         view.Empty();
         timer.start();
         view.Fill();
         view.WaitForScan();
         return static_cast<double>(timer.nsecsElapsed()) / 1e6;
       }},
      {"filled anew",
       [](Setting& view) { return view.Time(kTimes, [&] { view.GetList().Fill(); }); }},
      {"wheel step at the top", wheel},
      {"first jump to the end", jump(1.0)},
      {"jump to the middle", jump(0.5)},
      {"wheel step in the middle", wheel},
      {"arrow key in the middle",
       [](Setting& view) {
         view.GetList().SelectRowAlone(view.GetRows() / 2);
         return view.Time(kSteps, [&] { view.Key(Qt::Key_Down); });
       }},
      {"next unmatched line",
       [](Setting& view) { return view.Time(kTimes, [&] { view.Key(Qt::Key_F8); }); }},
      {"all selected",
       [](Setting& view) {
         return view.Time(
             kTimes, [&] { view.GetList().selectAll(); }, [&] { view.GetList().clearSelection(); });
       }},
      {"wheel step, all selected", wheel},
      {"ignored lines off or on", click(Ctrl::ShowIgnored)},
      {"unmatched lines off or on",
       [click](Setting& view) {
         view.GetList().clearSelection();
         return click(Ctrl::ShowUnmatched)(view);
       }},
      {"field info off or on", click(Ctrl::ShowDataFieldInfo)},
  };
}

/// Bytes that the view keeps for every row.
double MemoryPerRow(Setting& view, std::uint32_t kinds) {
  const std::size_t before = MemoryInUse();
  CTNParserInFileListCtrl list;
  list.resize(1000, 700);
  list.show();
  list.SetShowFlags(kinds);
  list.SetInputFile(&view.GetFile());
  list.Fill();
  do {
    QApplication::processEvents();
  } while (list.GetModel().IsScanning() || list.GetModel().HasLateRows());
  list.scrollToBottom();
  list.grab();
  return (static_cast<double>(MemoryInUse()) - static_cast<double>(before)) /
         list.GetModel().rowCount();
}

int Run() {
  constexpr std::size_t kFew = 1'000;
  constexpr std::size_t kMany = 1'000'000;
  constexpr std::size_t kBytesPerLine = 120;  // More than there are.
  const std::string list = MakePlacementList(kMany * kBytesPerLine);
  Setting few;
  Setting many;
  Setting oneBlock;
  if (!few.Open(PlacementTemplate(), FirstLines(list, kFew)) ||
      !many.Open(PlacementTemplate(), FirstLines(list, kMany)) ||
      !oneBlock.Open(RepetitionTemplate(), MakeWordLines(kMany))) {
    return 1;
  }
  std::printf("%-28s %10zu %10zu %6s %12s\n", "milliseconds, rows:", kFew, kMany, "ratio",
              "in one block");
  // One right after the other: what else the machine does should meet all of them.
  for (const Figure& figure : MakeFigures()) {
    const auto measure = [&figure](Setting& view) {
      view.Activate();
      return figure.measure(view);
    };
    const double ofFew = measure(few);
    const double ofMany = measure(many);
    const double ofBlock = measure(oneBlock);
    std::printf("%-28s %10.2f %10.2f %6.2f %12.2f\n", figure.name, ofFew, ofMany, ofMany / ofFew,
                ofBlock);
  }
  std::printf("bytes per row: all kinds %.1f, without ignored lines %.1f, one block %.1f\n",
              MemoryPerRow(many, kShowAllKinds), MemoryPerRow(many, kShowAllKinds & ~8U),
              MemoryPerRow(oneBlock, kShowAllKinds));
  return 0;
}

}  // namespace
}  // namespace bomparser::bench

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argc, argv);
  QApplication::setStyle(QStringLiteral("Fusion"));
  return bomparser::bench::Run();
}
