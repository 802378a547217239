#include "qt/setup_tabs.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <algorithm>

#include "loop/text.h"
#include "qt/limited_edit.h"
#include "qt/pictures.h"

namespace orvex {
namespace {

/// The picture beside an option button.
struct OptionPicture {
  Field field;
  std::size_t position;
  const char* control;
  const char* picture;
  const char* shows;
};

constexpr OptionPicture option_pictures[]{
    {Field::SPVOLU, 0, "Image1", "volume-off", "Speaker off"},
    {Field::SPVOLU, 1, "Image3", "volume-low", "Speaker at low volume"},
    {Field::SPVOLU, 2, "Image9", "volume-medium", "Speaker at medium volume"},
    {Field::SPVOLU, 3, "Image10", "volume-high", "Speaker at high volume"},
    {Field::SPPOWB, 0, "Image2", "beep-startup-off", "No beep at the start"},
    {Field::SPPOWB, 1, "Image4", "beep-startup-on", "A beep at the start"},
    {Field::SPPARA, 0, "Image7", "beep-parameter-off", "No beep at a new parameter"},
    {Field::SPPARA, 1, "Image8", "beep-parameter-on", "A beep at a new parameter"},
};

constexpr int picture_side = 24;
constexpr int below_all_rows = 9;

QGridLayout& grid_of(QWidget& widget) {
  return *static_cast<QGridLayout*>(widget.layout());
}

/// Whether no frame of the tab stands beside it, so that it is as wide as the page.
bool stands_alone(const FrameLayout& frame) {
  return std::ranges::none_of(frames(), [&](const FrameLayout& other) {
    return other.tab == frame.tab && other.column > 0;
  });
}

const FrameLayout& frame_layout(std::string_view name) {
  return *std::ranges::find(frames(), name, &FrameLayout::name);
}

}  // namespace

SetupTabs::SetupTabs(QtWindows& windows, Program& program, const std::vector<Page*>& pages)
    : windows_(windows), program_(program), pages_(pages) {
  for (const FrameLayout& frame : frames()) add_frame(frame);
  for (const Parameter& row : parameters()) {
    if (row.is_text()) {
      add_text_box(row);
    } else {
      add_options(row);
    }
  }
  auto* note = new QLabel("No-Read Message apply to Linear Codes and Magnetic Strip Data");
  note->setObjectName("Label2");
  note->setWordWrap(true);
  grid_of(*frames_.at("Frame21")).addWidget(note, 1, 0, 1, -1);
  set_tab_order();
}

void SetupTabs::add_frame(const FrameLayout& frame) {
  auto* box = new QGroupBox(to_qt(frame.caption));
  box->setObjectName(to_qt(frame.name));
  box->setAccessibleName(to_qt(frame.caption));  // inner frames would take that of the outer one
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins(8, 5, 8, 7);
  grid->setHorizontalSpacing(12);
  if (frame.option_columns > 1) {
    const int columns = frame.option_columns + (stands_alone(frame) ? 1 : 0);
    for (int column = 0; column < columns; ++column) grid->setColumnStretch(column, 1);
  }
  QGridLayout& page = pages_[static_cast<std::size_t>(frame.tab)]->grid();
  if (frame.inside.empty()) {
    page.addWidget(box, frame.row, frame.column, frame.row_span, 1);
  } else {
    const FrameLayout& outer = frame_layout(frame.inside);
    QGridLayout& outer_grid = grid_of(*frames_.at(frame.inside));
    outer_grid.addWidget(box, frame.row, frame.column, frame.row_span, -1);
    outer_grid.setRowStretch(below_all_rows, 1);
    // Of two frames beside a tall one, this one takes what is left over.
    if (outer.column > 0) page.setRowStretch(outer.row, 1);
  }
  frames_[frame.name] = box;
}

void SetupTabs::set_tab_order() {
  QWidget* before = nullptr;
  for (const FrameLayout& frame : frames()) {
    const auto controls =
        frames_.at(frame.name)->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    for (QWidget* control : controls) {
      if (control->focusPolicy() == Qt::NoFocus) continue;
      if (before != nullptr) QWidget::setTabOrder(before, control);
      before = control;
    }
  }
}

void SetupTabs::add_options(const Parameter& row) {
  QGridLayout& grid = grid_of(*frames_.at(row.frame));
  const auto columns = static_cast<std::size_t>(frame_layout(row.frame).option_columns);
  const std::size_t rows = (row.choices.size() + columns - 1) / columns;
  // By itself a frame's button would exclude those of the frames inside, too.
  auto* group = new QButtonGroup(frames_.at(row.frame));
  for (std::size_t position = 0; position < row.choices.size(); ++position) {
    const Choice& choice = row.choices[position];
    auto* button = new QRadioButton(to_qt(choice.caption));
    button->setObjectName("Option" + QString::number(choice.option));
    group->addButton(button);
    button->setAccessibleDescription(to_qt(frame_layout(row.frame).caption));
    const auto grid_row =
        static_cast<int>(columns == 2 && rows > 1 ? position % rows : position / columns);
    const auto column =
        static_cast<int>(columns == 2 && rows > 1 ? position / rows : position % columns);
    grid.addWidget(button, grid_row, column);
    add_picture(row, position, grid, grid_row);
    const Field field = row.field;
    QtWindows& windows = windows_;
    ScannerSetup& setup = program_.setup;
    // The Tab key comes to the one that is chosen, from which the arrows choose another.
    button->setFocusPolicy(Qt::ClickFocus);
    QObject::connect(button, &QRadioButton::toggled, button, [button](bool on) {
      button->setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus);
    });
    QObject::connect(button, &QRadioButton::toggled, &windows,
                     [&windows, &setup, field, position](bool on) {
                       if (on) windows.handle([&] { setup.choose(field, position); });
                     });
    windows.view.bind([&setup, field, position] { return setup.choice(field) == position; },
                      [button](bool selected) {
                        if (selected) button->setChecked(true);
                      });
  }
}

void SetupTabs::add_picture(const Parameter& row, std::size_t position, QGridLayout& grid,
                            int grid_row) {
  const auto* found = std::ranges::find_if(option_pictures, [&](const OptionPicture& entry) {
    return entry.field == row.field && entry.position == position;
  });
  if (found == std::end(option_pictures)) return;
  auto* image = new QLabel;
  image->setObjectName(found->control);
  image->setAccessibleName(found->shows);
  image->setPixmap(
      picture(found->picture, {picture_side, picture_side}, image->devicePixelRatioF()));
  grid.addWidget(image, grid_row, 1);
  grid.setColumnStretch(2, 1);
}

void SetupTabs::add_text_box(const Parameter& row) {
  auto* box = new LimitedEdit(windows_, program_.setup.text(row.field), caret_of(row.field),
                              row.most_typed);
  box->setObjectName(to_qt(row.text_box));
  box->setAccessibleName(to_qt(frame_layout(row.frame).caption));
  QGridLayout& grid = grid_of(*frames_.at(row.frame));
  grid.addWidget(box, 0, 0);
  if (row.field != Field::RSDELY) {
    QFont font("Terminal", 9);
    font.setStyleHint(QFont::TypeWriter);
    box->setFont(font);
    return;
  }
  box->key_up = [&program = program_] { program.Text10_KeyUp(); };
  auto* unit = new QLabel("msec");
  unit->setObjectName("Label8");
  grid.addWidget(unit, 0, 1);
  constexpr int wide_letters = 6;
  box->setMaximumWidth(wide_letters * box->fontMetrics().horizontalAdvance('0') + 20);
  grid.setColumnStretch(2, 1);
}

Caret& SetupTabs::caret_of(Field field) {
  Form1& form1 = program_.forms.form1;
  if (field == Field::PREFIX) return form1.Text2;
  return field == Field::SUFFIX ? form1.Text3 : form1.Text10;
}

}  // namespace orvex
