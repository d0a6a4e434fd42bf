#include "runtime/qt/port_menu.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSerialPortInfo>

#include "platform/serial.h"
#include "platform/system.h"
#include "runtime/qt/face.h"
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
        QMenu *device = assign->addMenu(FACE_AccessText(FACE_ToStd(NameAndDescription(info))));
        const QString location = info.systemLocation();
        for (int port = 1; port <= PORTS_SHOWN; port++)
            device->addAction(QString("COM&%1").arg(port), device,
                              [port, location] { FACE_AssignPort(port, location); });
    }
    assign->menuAction()->setVisible(AreLinksUsed() && !assign->isEmpty());
}

void RefreshItems()
{
    for (int port = 1; port <= PORTS_SHOWN; port++) {
        QAction *action = FACE_MenuAction(ITEM_PORT_FIRST + port - 1);
        if (!action)
            continue;
        const QString found = FACE_DescribePort(port);
        const QString name = QString("COM__%1").arg(port);
        action->setText(FACE_AccessText(
            FACE_ToStd(found.isEmpty() ? name : name + QString::fromUtf8(" \u2014 ") + found)));
        action->setToolTip(FACE_ToQt(SER_DevicePath(port)));
    }
}

} // namespace

QString FACE_DescribePort(int port)
{
    const QString path = FACE_ToQt(SER_DevicePath(port));
    const QList<QSerialPortInfo> infos = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &info : infos)
        if (IsDevice(info, path))
            return NameAndDescription(info);
    const QFileInfo file(path); // a pseudo terminal is not in the system's list
    return file.exists() ? file.canonicalFilePath() : QString();
}

int FACE_AssignPort(int port, const QString &device)
{
    const QString folder = FACE_ToQt(PLT_ConfigDir()) + "/ports";
    const QString link = folder + QString("/COM%1").arg(port);
    const QString fresh = link + ".new";
    QFile::remove(fresh);
    // The new link takes the old one's place in one step.
    if (!QDir().mkpath(folder) || !QFile::link(device, fresh) ||
        PLT_ReplaceFile(FACE_ToStd(fresh), FACE_ToStd(link)) < 0) {
        QFile::remove(fresh);
        MessagePopup("Error", FACE_ToStd("Cannot write the link " + link + "."));
        return -1;
    }
    const QString used = FACE_ToQt(SER_DevicePath(port));
    if (used != link && used != device)
        MessagePopup("Message", "The environment variable VIREO2_COM" + std::to_string(port) +
                                    " overrides this choice.");
    return 0;
}

void FACE_EquipPortMenu(QMenu *menu)
{
    menu->addSeparator();
    QMenu *assign = menu->addMenu("&Assign");
    assign->setToolTipsVisible(true);
    QObject::connect(menu, &QMenu::aboutToShow, [assign] {
        RefreshItems();
        FillAssignMenu(assign);
    });
}
