// Resources that the program contains, wherever it runs.
#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QDir>
#include <QIcon>
#include <QPushButton>

#include "dialogs/widgets/qt_text.h"

namespace quiverion {
namespace {

TEST(Resources, EveryPictureIsThereForEveryScaling) {
  const QStringList names = QDir(":/icons").entryList();
  ASSERT_FALSE(names.isEmpty());
  for (const QString& name : names) {
    const QList<QSize> sizes = QIcon(":/icons/" + name).availableSizes();
    for (const int size : {16, 20, 24, 32, 48}) EXPECT_TRUE(sizes.contains(QSize(size, size))) << FromQt(name) << size;
  }
}

TEST(Resources, QtSpeaksGerman) {
  const QDialogButtonBox box(QDialogButtonBox::Cancel);
  EXPECT_EQ(FromQt(box.button(QDialogButtonBox::Cancel)->text().remove(u'&')), "Abbrechen");
}

}  // namespace
}  // namespace quiverion
