#pragma once

#include <QTableView>

namespace quiverion {

/// The captions and the marked rows of a table, all rows if none is marked: columns separated by tabs, a line for each
/// row. In the order of the model's columns.
QString TableText(const QTableView& table);

}  // namespace quiverion
