#include "qt/upload_window.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <array>
#include <tuple>

#include "loop/text.h"
#include "qt/accessible_role.h"
#include "qt/pictures.h"
#include "qt/screen_room.h"

namespace orvex {
namespace {

struct HeaderRow {
  const char* caption;
  const char* unit;
  std::string Form3::*field;
};

const std::array header_rows{
    HeaderRow{"Code Size       :", "Bytes", &Form3::Text1},
    HeaderRow{"CRC 16           :", "(HEX)", &Form3::Text2},
    HeaderRow{"Version            :", "Rev", &Form3::Text3},
    HeaderRow{"Date Complied :", "Date", &Form3::Text4},
};

constexpr int cell_width = 260;
constexpr int cell_height = 40;

/// As the toolkit's bar takes it, which ends 127 below 2 GiB.
int whole(float value) {
  constexpr float largest_in_int = 2147483520.0F;
  return static_cast<int>(std::min(value, largest_in_int));
}

/// Each byte as one character that can be seen.
QString visible_text(const std::string& bytes) {
  const QChar stand_in(0x00B7);
  QString text = to_qt(bytes);
  for (QChar& c : text) {
    if (!c.isPrint() || c.unicode() == 0xAD) c = stand_in;
  }
  return text;
}

/// Picture1: one cell of the strip PictureClip1.
class AnimationView final : public QWidget {
 public:
  AnimationView() { setFixedSize(cell_width, cell_height); }

  void show_cell(int cell) {
    cell_ = cell;
    update();
  }

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    const qreal density = devicePixelRatioF() > 1 ? 2 : 1;
    if (strip_.isNull()) strip_ = whole_picture("upload-strip", density);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(
        QRectF(rect()), strip_,
        QRectF(0, cell_ * cell_height * density, cell_width * density, cell_height * density));
  }

 private:
  QPixmap strip_;
  int cell_ = 0;
};

}  // namespace

UploadWindow::UploadWindow(QtWindows& windows, Program& program, QWidget* parent)
    : QDialog(parent), windows_(windows), program_(program) {
  setObjectName("Form3");
  setWindowTitle("Upload Binary File");
  auto* grid = new QGridLayout(this);
  for (int row = 0; row < static_cast<int>(header_rows.size()); ++row) add_header_row(*grid, row);
  auto* cancel = new QPushButton("&Cancel");
  cancel->setObjectName("Command1");
  cancel->setAutoDefault(false);
  connect(cancel, &QPushButton::clicked, this,
          [this] { windows_.handle([this] { program_.Form3_Command1_Click(); }); });
  grid->addWidget(cancel, 4, 0, 1, 3, Qt::AlignHCenter);
  add_progress(*grid);
  add_animation(*grid);
  grid->addItem(new QSpacerItem(width_for_title(*this), 0), grid->rowCount(), 0, 1, 3);
  grid->setSizeConstraint(QLayout::SetFixedSize);
  windows.view.bind([&form3 = program.forms.form3] { return form3.Visible; },
                    [this](bool visible) {
                      if (visible) {
                        place();
                        findChild<QWidget*>("Text1")->setFocus();  // wherever the last load left it
                      }
                      setVisible(visible);
                      if (visible) activateWindow();
                    });
}

QRect UploadWindow::kept_in_view() const {
  return part_with_frame(*this, {0, 0, width(), last_row_->geometry().bottom() + 1});
}

void UploadWindow::place() {
  adjustSize();
  const QRect room = room_on(*parentWidget()->screen());
  // A box below the head: its frame and margins, two lines of text and a row of buttons.
  constexpr int lines_of_box = 8;
  const int box = lines_of_box * fontMetrics().lineSpacing() + 2 * frame_above(*this);
  const int lowest = std::max(room.top(), room.bottom() - last_row_->geometry().bottom() - box);
  QRect wanted = rect();
  wanted.moveCenter(parentWidget()->geometry().center());
  wanted.moveTop(std::min(wanted.top(), lowest));
  move(place_in(room, wanted));
}

void UploadWindow::reject() {
  // Esc is no quicker way out than the button.
  windows_.handle([this] { program_.Form3_Command1_Click(); });
}

void UploadWindow::closeEvent(QCloseEvent* event) {
  if (windows_.ended()) return;
  event->ignore();
  windows_.handle([this] { program_.Form3_Close(); });
}

void UploadWindow::add_header_row(QGridLayout& grid, int row) {
  const HeaderRow& parts = header_rows[static_cast<std::size_t>(row)];
  auto* caption = new QLabel(parts.caption);
  caption->setObjectName(QString("Label%1").arg(row + 1));
  caption->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  auto* text = new QLineEdit;
  text->setObjectName(QString("Text%1").arg(row + 1));
  text->setReadOnly(true);
  text->setAccessibleName(QString(parts.caption).remove(':').simplified());
  auto* unit = new QLabel(parts.unit);
  unit->setObjectName(QString("Label%1").arg(row + 5));
  caption->setBuddy(text);
  last_row_ = text;
  grid.addWidget(caption, row, 0);
  grid.addWidget(text, row, 1);
  grid.addWidget(unit, row, 2);
  windows_.view.bind(
      [this, field = parts.field]() -> const std::string& { return program_.forms.form3.*field; },
      [text](const std::string& bytes) { text->setText(visible_text(bytes)); });
}

void UploadWindow::add_progress(QGridLayout& grid) {
  auto* bar = new QProgressBar;
  bar->setObjectName("ProgressBar1");
  bar->setAccessibleName("Progress of the upload");
  QSizePolicy policy = bar->sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  bar->setSizePolicy(policy);
  grid.addWidget(bar, 5, 0, 1, 3);
  windows_.view.bind(
      [this] {
        const ProgressBar& record = program_.forms.form3.ProgressBar1;
        const int most = whole(record.Max);
        const int part = std::min(whole(record.Value), most - 1);
        return std::tuple(whole(record.Min), most, record.Value < record.Max ? part : most,
                          record.Visible);
      },
      [bar](const auto& state) {
        const auto& [least, most, value, visible] = state;
        bar->setRange(least, most);
        bar->setValue(value);
        bar->setVisible(visible);
      });
}

void UploadWindow::add_animation(QGridLayout& grid) {
  auto* animation = new AnimationView;
  animation->setObjectName("Picture1");
  set_accessible_role(*animation, QAccessible::Animation, "Data goes from the PC to the scanner");
  grid.addWidget(animation, 6, 0, 1, 3, Qt::AlignHCenter);
  windows_.view.bind([this] { return program_.forms.form3.Picture1; },
                     [animation](int cell) { animation->show_cell(cell); });
}

}  // namespace orvex
