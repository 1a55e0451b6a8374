#include "ui/controls/EntityListText.h"

#include "ui/controls/DisplayText.h"
#include "ui/controls/EntityListPieces.h"

#include <algorithm>
#include <utility>

namespace bomparser {
namespace {

enum class LineEnds { Kept, AsCodes };

bool IsShownAsCode(QChar character, LineEnds lineEnds) {
  constexpr char16_t kDelete = 0x7F;
  if (character == u'\n' || character == u'\t') return lineEnds == LineEnds::AsCodes;
  return character < u' ' || character == kDelete;
}

/// What a text view would swallow, or take for the end of a line, is shown by its code. The marks
/// around it are in every font, which the pictures of control characters are not.
QString VisibleText(std::string_view bytes, LineEnds lineEnds) {
  constexpr int kDigits = 2;
  constexpr int kHexadecimal = 16;
  const QString text = ToDisplayText(bytes);
  QString visible;
  visible.reserve(text.size());
  for (const QChar character : text) {
    if (IsShownAsCode(character, lineEnds)) {
      const QString code = QString::number(character.unicode(), kHexadecimal).toUpper();
      visible += u'\u2039' + code.rightJustified(kDigits, u'0') + u'\u203a';
    } else {
      visible += character;
    }
  }
  return visible;
}

class Layout {
 public:
  void AddMarkup(std::string_view bytes, MarkupKind kind) {
    m_result.markup.push_back({m_result.text.size(), static_cast<qsizetype>(bytes.size()), kind});
    m_result.text += QLatin1String(bytes.data(), static_cast<qsizetype>(bytes.size()));
  }
  void AddText(std::string_view bytes) { m_result.text += VisibleText(bytes, LineEnds::Kept); }
  void Add(const ListPiece& piece);
  void StartLine() {
    // Deeper than that no list goes, but a broken one must not become a text of blanks.
    constexpr int kDeepest = 20;
    constexpr int kIndent = 2;
    m_result.text += u'\n';
    m_result.text.append(QString(qsizetype{kIndent} * std::min(m_depth, kDeepest), u' '));
  }
  void Enter() { ++m_depth; }
  void Leave() { m_depth = std::max(m_depth - 1, 0); }

  EntityListText Finish() {
    qsizetype start = 0;
    while (start <= m_result.text.size()) {
      qsizetype end = m_result.text.indexOf(u'\n', start);
      if (end < 0) end = m_result.text.size();
      m_result.longestLine = std::max(m_result.longestLine, end - start);
      start = end + 1;
    }
    return std::move(m_result);
  }

 private:
  EntityListText m_result;
  int m_depth = 0;
  bool m_behindOpenEntity = false;  // Where the entity's type stands, on the same line.
};

void Layout::Add(const ListPiece& piece) {
  switch (piece.kind) {
    case PieceKind::OpenEntity:
      StartLine();
      AddMarkup(piece.bytes, MarkupKind::Entity);
      Enter();
      break;
    case PieceKind::CloseEntity:
      Leave();
      StartLine();
      AddMarkup(piece.bytes, MarkupKind::Entity);
      break;
    case PieceKind::OpenTag:
      StartLine();
      AddMarkup(piece.bytes, MarkupKind::Value);
      break;
    case PieceKind::Value:
      AddText(piece.bytes);
      break;
    case PieceKind::CloseTag:
      AddMarkup(piece.bytes, MarkupKind::Value);
      break;
    case PieceKind::Text:
      if (!m_behindOpenEntity) StartLine();
      AddText(piece.bytes);
      break;
  }
  m_behindOpenEntity = piece.kind == PieceKind::OpenEntity;
}

}  // namespace

EntityListText LayOutEntityList(std::string_view list) {
  using entity_list::kClosing;
  using entity_list::kOpening;
  Layout layout;
  if (!entity_list::IsFramed(list)) {
    layout.AddText(list);
    return layout.Finish();
  }
  layout.AddMarkup(kOpening, MarkupKind::Entity);
  layout.Enter();
  EntityListPieces pieces(
      list.substr(kOpening.size(), list.size() - kOpening.size() - kClosing.size()));
  for (ListPiece piece; pieces.Next(piece);) {
    layout.Add(piece);
  }
  layout.Leave();
  layout.StartLine();
  layout.AddMarkup(kClosing, MarkupKind::Entity);
  return layout.Finish();
}

QString OnOneLine(std::string_view bytes) {
  QString line;
  EntityListPieces pieces(bytes);
  for (ListPiece piece; pieces.Next(piece);) {
    line += VisibleText(piece.bytes, LineEnds::AsCodes);
  }
  return line;
}

}  // namespace bomparser
