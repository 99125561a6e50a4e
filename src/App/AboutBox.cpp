#include "App/AboutBox.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

namespace pulsara {

void showAboutBox(QWidget* owner)
{
    QDialog box(owner);
    box.setWindowTitle(QStringLiteral("About"));
    auto* icon = new QLabel(&box);
    QIcon appIcon = QApplication::windowIcon().isNull() ? box.style()->standardIcon(QStyle::SP_MessageBoxInformation) : QApplication::windowIcon();
    icon->setPixmap(appIcon.pixmap(32, 32));
    auto* text = new QLabel(QStringLiteral("Pulsara v.1.5 (1)\nVersion " PULSARA_VERSION "\nA pattern sequencer and sampler"), &box);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, &box);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
    auto* row = new QHBoxLayout;
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addWidget(text, 1);
    auto* layout = new QVBoxLayout(&box);
    layout->addLayout(row);
    layout->addWidget(buttons);
    box.exec();
}

} // namespace pulsara
