#include "tarn/show/tarn_show_table.h"

#include <algorithm>
#include <unordered_map>

#include "tarn/show/tarn_show_bars.h"
#include "tarn/show/tarn_show_value.h"

namespace tarn {

namespace {

constexpr std::size_t kRowsAtMost = 20;
constexpr std::size_t kCellAtMost = 40;   // at 80 columns, more on wider terminals
constexpr std::size_t kCellAtLeast = 12;  // a column that is shortened for others to fit
constexpr std::size_t kRecordsAtMost = 3;
constexpr std::size_t kRecordLinesAtMost = 3;
constexpr std::size_t kColumnsAtMost = 100;
constexpr std::size_t kBytesAtMost = 4096;  // of a cell
constexpr std::size_t kGap = 2;

struct Column {
  Shown title;
  Unit unit = Unit::text;
  std::size_t width = 0;
  bool hasNumber = false, hasText = false;

  /// Its cells stand at the right: nothing but numbers, as far as there is something.
  bool isNumber() const { return hasNumber && !hasText; }
};

/// A row of cells; `times` for equal ones that followed it.
struct Row {
  std::vector<Shown> cells;
  std::size_t times = 1;
};

std::string columnName(const Node& member) {
  std::string name(member.key);
  return member.repeat == 1 ? name : name + "#" + std::to_string(member.repeat);
}

/// A number as databases write them: with a sign, with decimals.
bool isDecimal(std::string_view text) {
  text.remove_prefix(text.starts_with('-') ? 1 : 0);
  const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
  const std::string_view rest = text.substr(digits);
  return digits > 0 && (rest.empty() || (rest.size() > 1 && rest[0] == '.' &&
                                         rest.find_first_not_of("0123456789", 1) == std::string_view::npos));
}

class Table {
 public:
  Table(const Tree& tree, const Facts& facts, const std::string& pointer, Lines& lines)
      : m_tree(tree), m_facts(facts), m_pointer(pointer), m_lines(lines) {}

  void read(const Node& array) {
    const std::size_t most = m_lines.most(array.count, kRowsAtMost);
    std::size_t read = 0;
    for (const Node& row : m_tree.children(array)) {
      if (m_rows.size() == most) {
        break;
      }
      addRow(row);
      ++read;
    }
    m_left = array.count - read;
  }

  /// Few rows that are too wide stand as records; of many, texts are shortened before columns go.
  void print(std::size_t indent) {
    const std::size_t width = m_lines.widthBehind(indent);
    if (measure() > width && m_rows.size() <= kRecordsAtMost) {
      return printRecords(indent);
    }
    shorten(width);
    const std::size_t fitting = fittingIn(width);
    std::vector<Shown> titles;
    for (const Column& column : m_columns) {
      titles.push_back(column.title);
    }
    m_lines.line(indent, aligned(titles, fitting));
    for (const Row& row : m_rows) {
      m_lines.line(indent, aligned(row.cells, fitting) + timesOf(row));
    }
    m_lines.rest(indent, m_left, "row");
    printLeftOut(indent, fitting);
  }

 private:
  static Shown timesOf(const Row& row) { return row.times == 1 ? Shown() : say("  ({} times)", row.times); }

  void printRecords(std::size_t indent) {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
      std::vector<Labelled> record;
      for (std::size_t column = 0; column < m_rows[i].cells.size(); ++column) {
        const Shown& cell = m_rows[i].cells[column];
        record.push_back(
            {m_columns[column].title, fitted(cell, kRecordLinesAtMost * m_lines.widthBehind(indent))});
        if (record.back().text.text().size() != cell.text().size()) {
          m_lines.cut();
        }
      }
      if (i > 0) {
        m_lines.gap();
      }
      m_lines.labelled(indent, record);
      if (m_rows[i].times > 1) {
        m_lines.line(indent, say("({} times)", m_rows[i].times));
      }
    }
    m_lines.rest(indent, m_left, "row");
  }

  void printLeftOut(std::size_t indent, std::size_t fitting) {
    m_lines.rest(indent, m_columns.size() - fitting + m_columnsLeft, "column");
    Shown names;
    for (std::size_t i = fitting; i < m_columns.size(); ++i) {
      names += (names.text().empty() ? Shown() : Shown(", ")) + m_columns[i].title;
    }
    if (!names.text().empty()) {
      m_lines.line(indent + kGap, names);
    }
  }

  void addRow(const Node& row) {
    std::vector<Shown> cells(m_columns.size());
    for (const Node& member : m_tree.children(row)) {
      const std::size_t column = columnOf(columnName(member));
      if (column == kColumnsAtMost) {
        continue;
      }
      cells.resize(std::max(cells.size(), column + 1));
      Column& known = m_columns[column];
      if (!isSilent(member) && member.text != "NULL") {
        (isDecimal(member.text) ? known.hasNumber : known.hasText) = true;
      }
      cells[column] =
          valueOf(m_lines.look().all ? member.text : member.text.substr(0, kBytesAtMost), known.unit);
    }
    const auto same = [](const Shown& one, const Shown& other) { return one.text() == other.text(); };
    if (!m_rows.empty() && std::equal(cells.begin(), cells.end(), m_rows.back().cells.begin(),
                                      m_rows.back().cells.end(), same)) {
      ++m_rows.back().times;
    } else {
      m_rows.push_back({std::move(cells)});
    }
  }

  std::size_t columnOf(const std::string& name) {
    const auto known = m_index.find(name);
    if (known != m_index.end()) {
      return known->second;
    }
    if (m_columns.size() == kColumnsAtMost) {
      m_columnsLeft = 1;  // at least
      return kColumnsAtMost;
    }
    std::string place = m_pointer + "/*";
    appendToken(name, place += '/');
    const Fact* const fact = m_facts.find(place);
    m_columns.push_back({.title = shown(fact == nullptr ? name : fact->title),
                         .unit = fact == nullptr ? Unit::text : fact->unit});
    m_index.emplace(name, m_columns.size() - 1);
    return m_columns.size() - 1;
  }

  /// Sets the widths that cells have; gives that of the whole table.
  std::size_t measure() {
    std::size_t taken = 0;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
      Column& column = m_columns[i];
      column.width = columns(column.title.text());
      for (const Row& row : m_rows) {
        column.width = std::max(column.width, i < row.cells.size() ? columns(row.cells[i].text()) : 0);
      }
      taken += column.width + (i == 0 ? 0 : kGap);
    }
    return taken;
  }

  /// Takes from the widest column of texts, again and again, until the table fits or nothing is left to take.
  void shorten(std::size_t width) {
    std::size_t taken = 0;
    for (Column& column : m_columns) {
      column.width = m_lines.look().all
                         ? column.width
                         : std::min(column.width, std::max(kCellAtMost, m_lines.look().width / 2));
      taken += column.width + (taken == 0 ? 0 : kGap);
    }
    while (taken > width) {
      Column* widest = nullptr;
      for (Column& column : m_columns) {
        const bool canGive = !column.isNumber() && column.width > kCellAtLeast;
        widest = canGive && (widest == nullptr || column.width > widest->width) ? &column : widest;
      }
      if (widest == nullptr) {
        return;
      }
      --widest->width;
      --taken;
    }
  }

  /// How many columns fit side by side, one at least.
  std::size_t fittingIn(std::size_t width) const {
    std::size_t taken = 0;
    std::size_t fitting = 0;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
      taken += m_columns[i].width + (i == 0 ? 0 : kGap);
      fitting = i == 0 || (taken <= width && fitting == i) ? i + 1 : fitting;
    }
    return fitting;
  }

  /// Without blanks at the end.
  Shown aligned(const std::vector<Shown>& cells, std::size_t count) {
    Shown line;
    std::size_t start = 0;  // of the column
    std::size_t at = 0;     // where the line ends
    for (std::size_t i = 0; i < std::min(count, cells.size()); ++i) {
      const Shown cell = fitted(cells[i], m_columns[i].width);
      const std::size_t width = columns(cell.text());
      if (cell.text().size() != cells[i].text().size()) {
        m_lines.cut();
      }
      if (width > 0) {
        const std::size_t from = start + (m_columns[i].isNumber() ? m_columns[i].width - width : 0);
        line += blanks(from - at) + cell;
        at = from + width;
      }
      start += m_columns[i].width + kGap;
    }
    return line;
  }

  const Tree& m_tree;
  const Facts& m_facts;
  const std::string& m_pointer;
  Lines& m_lines;
  std::vector<Column> m_columns;
  std::unordered_map<std::string, std::size_t> m_index;
  std::vector<Row> m_rows;
  std::size_t m_left = 0, m_columnsLeft = 0;
};

}  // namespace

bool isTable(const Tree& tree, const Node& array) {
  for (const Node& row : tree.children(array)) {
    // Nothing but single values: as many nodes below as members.
    const std::size_t below = static_cast<std::size_t>(tree.nodes().data() + row.end - &row - 1);
    if (row.kind != NodeKind::object || below != row.count) {
      return false;
    }
    for (const Node& member : tree.children(row)) {
      if (member.kind == NodeKind::object || member.kind == NodeKind::array) {
        return false;
      }
    }
  }
  return array.kind == NodeKind::array && array.count > 0;
}

void showTable(const Tree& tree, const Node& array, const Facts& facts, const std::string& pointer,
               std::size_t indent, Lines& lines) {
  if (const std::optional<BarColumns> bars = barColumns(tree, array, facts.find(pointer))) {
    const Fact* const label = facts.find(pointer + "/*/" + bars->label);
    showBars(tree, array, *bars, indent, lines);
    if (label != nullptr && label->unit == Unit::text && label->meaning.find(' ') == 1) {
      lines.words(indent, shown(label->meaning));  // it explains letters
    }
    return;
  }
  Table table(tree, facts, pointer, lines);
  table.read(array);
  table.print(indent);
}

}  // namespace tarn
