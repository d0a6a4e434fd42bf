#include "runtime/qt/port_menu.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QSerialPortInfo>

#include "platform/serial.h"
#include "platform/system.h"
#include "runtime/qt/qt_view.h"
#include "ui/resource.h"

namespace {

constexpr int PORTS_SHOWN = 9; // COM1 to COM9 have an item of their own

QString NameAndDescription(const QSerialPortInfo &info)
{
    return info.description().isEmpty() ? info.portName()
                                        : info.portName() + ", " + info.description();
}

// The kernel lists four legacy ports whether or not there is a chip behind them.
bool IsReal(const QSerialPortInfo &info)
{
    return !info.description().isEmpty() || !info.manufacturer().isEmpty() ||
           info.hasProductIdentifier();
}

bool IsDevice(const QSerialPortInfo &info, const QString &path)
{
    if (info.systemLocation().compare(path, Qt::CaseInsensitive) == 0)
        return true;
    const QString target = QFileInfo(path).canonicalFilePath();
    return !target.isEmpty() && QFileInfo(info.systemLocation()).canonicalFilePath() == target;
}

// Where numbers are the system's own there are no links to write.
bool AreLinksUsed()
{
    return PLT_PathSeparator() == '/' && !PLT_ConfigDir().empty();
}

void FillAssignMenu(QMenu *assign)
{
    assign->clear();
    const QList<QSerialPortInfo> infos = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &info : infos) {
        if (!IsReal(info))
            continue;
        QMenu *device = assign->addMenu(QTV_AccessText(NameAndDescription(info).toStdString()));
        const QString location = info.systemLocation();
        for (int port = 1; port <= PORTS_SHOWN; port++)
            device->addAction(QString("COM&%1").arg(port), device,
                              [port, location] { QTV_AssignPort(port, location); });
    }
    assign->menuAction()->setVisible(AreLinksUsed() && !assign->isEmpty());
}

// What the menu shows behind "COM<n>": "" when there is no such device.
QString Describe(int port, const QList<QSerialPortInfo> &infos)
{
    const QString path = QTV_ToQt(SER_DevicePath(port));
    for (const QSerialPortInfo &info : infos)
        if (IsDevice(info, path))
            return NameAndDescription(info);
    const QFileInfo file(path); // a pseudo terminal is not in the system's list
    return file.exists() ? file.canonicalFilePath() : QString();
}

void RefreshItems()
{
    const QList<QSerialPortInfo> infos = QSerialPortInfo::availablePorts();
    for (int port = 1; port <= PORTS_SHOWN; port++) {
        QAction *action = QTV_MenuAction(ITEM_PORT_FIRST + port - 1);
        if (!action)
            continue;
        QString found = Describe(port, infos);
        found.replace('&', "&&");
        const QString name = QString("COM&%1").arg(port);
        action->setText(found.isEmpty() ? name : name + QString::fromUtf8(" \u2014 ") + found);
        action->setToolTip(QTV_ToQt(SER_DevicePath(port)));
    }
}

// Of the window alone: the program has no part in it and waits for nothing.
void Tell(QMessageBox::Icon icon, const QString &title, const QString &message)
{
    auto *box = new QMessageBox(icon, title, message, QMessageBox::Ok, QTV_DialogParent());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
}

} // namespace

QString QTV_DescribePort(int port)
{
    return Describe(port, QSerialPortInfo::availablePorts());
}

int QTV_AssignPort(int port, const QString &device)
{
    const QString folder = QTV_ToQt(PLT_ConfigDir()) + "/ports";
    const QString link = folder + QString("/COM%1").arg(port);
    const QString fresh = link + ".new";
    QFile::remove(fresh);
    // The new link takes the old one's place in one step.
    if (!QDir().mkpath(folder) || !QFile::link(device, fresh) ||
        PLT_ReplaceFile(fresh.toStdString(), link.toStdString()) < 0) {
        QFile::remove(fresh);
        Tell(QMessageBox::Warning, "Error", "Cannot write the link " + link + ".");
        return -1;
    }
    const QString used = QTV_ToQt(SER_DevicePath(port));
    if (used != link && used != device)
        Tell(QMessageBox::Information, "Message",
             QString("The environment variable VIREO2_COM%1 overrides this choice.").arg(port));
    return 0;
}

void QTV_EquipPortMenu(QMenu *menu)
{
    menu->addSeparator();
    QMenu *assign = menu->addMenu("&Assign");
    assign->setToolTipsVisible(true);
    QObject::connect(menu, &QMenu::aboutToShow, [assign] {
        RefreshItems();
        FillAssignMenu(assign);
    });
}
