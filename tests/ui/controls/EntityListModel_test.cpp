#include "ui/controls/EntityListModel.h"

#include "tests/support/TestFolder.h"
#include "tests/ui/controls/EntityLists.h"

#include <QAbstractItemModelTester>
#include <string>
#include <utility>
#include <vector>

namespace bomparser::test {
namespace {

class EntityListModelTest : public TestFolder {
 protected:
  void Show(const std::string& bytes) {
    WriteFile("list.xml", bytes);
    ViewedFile file;
    std::string error;
    ASSERT_TRUE(file.Open(PathOf("list.xml"), error)) << error;
    model.SetFile(std::move(file));
  }
  std::vector<std::string> Rows() const {
    std::vector<std::string> rows;
    for (int row = 0; row < model.rowCount(); ++row)
      rows.push_back(model.data(model.index(row), Qt::DisplayRole).toString().toStdString());
    return rows;
  }
  int Find(int row, const char* text, SearchDirection direction = SearchDirection::Down) const {
    return model.Find(row, QString::fromUtf8(text), direction);
  }

  EntityListModel model;
  QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

using Texts = std::vector<std::string>;

TEST_F(EntityListModelTest, EveryEntityIsARow) {
  Show(List(Entity("a") + Entity("b") + Entity("c")));
  EXPECT_EQ(Rows(), (Texts{"<TN_FILEPARSER_ENTITIES>", Entity("a"), Entity("b"), Entity("c"),
                           "</TN_FILEPARSER_ENTITIES>"}));
}

TEST_F(EntityListModelTest, AListWithoutEntitiesHasTheRowsAroundThem) {
  Show(List(""));
  EXPECT_EQ(Rows(), (Texts{"<TN_FILEPARSER_ENTITIES>", "</TN_FILEPARSER_ENTITIES>"}));
}

TEST_F(EntityListModelTest, AnOpeningTagInAValueStartsNoRow) {
  Show(List(Entity("x<ENTITY>y") + Entity("z")));
  EXPECT_EQ(Rows()[1], Entity("x<ENTITY>y"));
}

TEST_F(EntityListModelTest, AnEmptyFileHasNoRows) {
  Show("");
  EXPECT_EQ(Rows(), Texts());
  EXPECT_EQ(model.GetLongestRow(), -1);
  EXPECT_EQ(Find(-1, "a"), -1);
}

TEST_F(EntityListModelTest, WhatIsNoListIsShownByLines) {
  Show("one\n\n<ENTITY>two\r\nthree");
  EXPECT_EQ(Rows(), (Texts{"one", "", "<ENTITY>two\u20390D\u203a", "three"}));
}

TEST_F(EntityListModelTest, ALongEntityGoesOnInTheNextRowWithoutLoss) {
  const std::string value(5 * EntityListModel::kLongestRow, 'x');
  Show(List(Entity(value) + Entity("b")));
  const Texts rows = Rows();
  std::string all;
  for (const std::string& row : rows) {
    EXPECT_LE(row.size(), EntityListModel::kLongestRow);
    all += row;
  }
  EXPECT_EQ(all, List(Entity(value) + Entity("b")));
  EXPECT_EQ(rows[rows.size() - 2], Entity("b"));
}

TEST_F(EntityListModelTest, ARowEndsBetweenTwoCharacters) {
  std::string text = "a";
  while (text.size() < 3 * EntityListModel::kLongestRow)
    text += "\u20ac";
  Show(text);
  std::string all;
  for (const std::string& row : Rows())
    all += row;
  EXPECT_EQ(all, text);
  EXPECT_GT(model.rowCount(), 3);
}

TEST_F(EntityListModelTest, BytesThatAreNoCharactersAreCutWhereverTheRowEnds) {
  Show(std::string(2 * EntityListModel::kLongestRow, '\x80'));
  EXPECT_EQ(model.rowCount(), 2);
  EXPECT_EQ(model.GetRowText(1).size(), qsizetype{EntityListModel::kLongestRow});
}

TEST_F(EntityListModelTest, TheLongestRowIsKnown) {
  Show(List(Entity("a") + Entity("a longer one") + Entity("b")));
  EXPECT_EQ(model.GetLongestRow(), 2);
  Show(List(""));
  EXPECT_EQ(model.GetLongestRow(), 1);
  Show(List(Entity(std::string(30, 'x')) + Entity(std::string(10, '\x7F')) +
            Entity(std::string(9, '\x01'))));
  EXPECT_EQ(model.GetLongestRow(), 2) << "a code is shown as four characters";
  std::string letters;
  for (int i = 0; i < 20; ++i)
    letters += "\xE7\x94\xB5";  // Twice as wide, of three bytes.
  Show(List(Entity(letters) + Entity(std::string(45, 'x')) + Entity(std::string(44, '\xB5'))));
  EXPECT_EQ(model.GetLongestRow(), 2);
}

TEST_F(EntityListModelTest, TheFileMayGoAndTheRowsStay) {
  std::string entities;
  while (entities.size() < 3'000'000)
    entities += Entity("a");
  Show(List(entities));
  const int rows = model.rowCount();
  ASSERT_EQ(rows, static_cast<int>(entities.size() / Entity("a").size()) + 2);
  std::filesystem::remove(PathOf("list.xml"));
  EXPECT_EQ(model.GetRowText(rows / 2).toStdString(), Entity("a"));
}

TEST_F(EntityListModelTest, FindsTheNextRowAndGoesOnAtTheOtherEnd) {
  Show("find me\nno\nFIND ME\nno");
  EXPECT_EQ(Find(-1, "find me"), 0);
  EXPECT_EQ(Find(0, "find me"), 2);
  EXPECT_EQ(Find(2, "find me"), 0);
  EXPECT_EQ(Find(3, "me"), 0);
  EXPECT_EQ(Find(0, "you"), -1);
  EXPECT_EQ(Find(0, ""), -1);
}

TEST_F(EntityListModelTest, FindsThePreviousRowAndGoesOnAtTheOtherEnd) {
  Show("find me\nno\nFIND ME\nno");
  EXPECT_EQ(Find(3, "find me", SearchDirection::Up), 2);
  EXPECT_EQ(Find(2, "find me", SearchDirection::Up), 0);
  EXPECT_EQ(Find(0, "find me", SearchDirection::Up), 2);
  EXPECT_EQ(Find(-1, "find me", SearchDirection::Up), 2);
  EXPECT_EQ(Find(0, "you", SearchDirection::Up), -1);
}

TEST_F(EntityListModelTest, TheOnlyRowWithTheTextIsFoundFromItself) {
  Show("no\nyes\nno");
  EXPECT_EQ(Find(1, "yes"), 1);
  EXPECT_EQ(Find(1, "yes", SearchDirection::Up), 1);
}

TEST_F(EntityListModelTest, FindsTextsInEitherEncoding) {
  Show("plain\nGr\xC3\xB6\xC3\x9F\x65\nplain\nGr\xF6\xDF\x65");
  EXPECT_EQ(Find(0, "gr\u00f6\u00df"), 1);
  EXPECT_EQ(Find(1, "gr\u00f6\u00df"), 3);
  EXPECT_EQ(Find(3, "\u00f6", SearchDirection::Up), 1);
  EXPECT_EQ(Find(0, "\u00e4"), -1);
  EXPECT_EQ(Find(0, "\u00e4", SearchDirection::Up), -1);
}

TEST_F(EntityListModelTest, FindsLettersOfTheOldEncodingFromTheFirstOn) {
  Show("plain\n1 \x80\nplain\n2 \x80");
  EXPECT_EQ(Find(0, "\u20ac"), 1);
  EXPECT_EQ(Find(0, "\u20ac", SearchDirection::Up), 3);
}

TEST_F(EntityListModelTest, ATextOverTheEndOfARowIsInNoRow) {
  Show(List(Entity("a") + Entity("b")));
  EXPECT_EQ(Find(0, "</ENTITY><ENTITY>"), -1);
  EXPECT_EQ(Find(0, "</ENTITY><ENTITY>", SearchDirection::Up), -1);
}

TEST_F(EntityListModelTest, ClearedThereIsNothing) {
  Show(List(Entity("a")));
  model.Clear();
  EXPECT_EQ(Rows(), Texts());
  EXPECT_EQ(Find(0, "a"), -1);
}

}  // namespace
}  // namespace bomparser::test
