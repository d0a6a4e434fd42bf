// What is behind a number is looked up when the menu opens: an adapter may have been plugged in a
// second ago. The program is not asked; it opens whatever stands behind its number by then.
#include "runtime/qt/port_menu.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>

#include "platform/port_list.h"
#include "platform/serial.h"
#include "runtime/qt/qt_view.h"
#include "ui/resource.h"

namespace {

constexpr int PORTS_SHOWN = 9; // COM1 to COM9 have an item of their own

QString NameAndDescription(const SER_PortEntry &port)
{
    const QString name = QFileInfo(QTV_ToQt(port.device)).fileName();
    return port.description.empty() ? name : name + ", " + QTV_ToQt(port.description);
}

// What the menu shows behind "COM<n>": "" when there is no such device.
QString Describe(int port, const std::vector<SER_PortEntry> &ports)
{
    for (const SER_PortEntry &found : ports) {
        if (found.number != port)
            continue;
        // A device without a number is listed with the one it would get: it has none yet.
        const QFileInfo used(QTV_ToQt(SER_DevicePath(port))), device(QTV_ToQt(found.device));
        if (SER_CanAssignPort() && used.canonicalFilePath() != device.canonicalFilePath())
            return QString();
        return found.description.empty() ? QTV_ToQt(found.device) : NameAndDescription(found);
    }
    return QString();
}

void RefreshMenu(QMenu *assign)
{
    const std::vector<SER_PortEntry> ports = SER_ListPorts();
    for (int port = 1; port <= PORTS_SHOWN; port++) {
        QAction *action = QTV_MenuAction(ITEM_PORT_FIRST + port - 1);
        if (!action)
            continue;
        QString found = Describe(port, ports); // makers write "&" into their names
        found.replace('&', "&&");
        const QString name = QString("COM&%1").arg(port);
        action->setText(found.isEmpty() ? name : name + QString::fromUtf8(" \u2014 ") + found);
        action->setToolTip(QTV_ToQt(SER_DevicePath(port)));
    }
    // Each device with the numbers it can get; on systems that number their ports, nothing.
    assign->clear();
    for (const SER_PortEntry &found : ports) {
        QMenu *device = assign->addMenu(QTV_AccessText(NameAndDescription(found).toStdString()));
        const QString location = QTV_ToQt(found.device);
        for (int port = 1; port <= PORTS_SHOWN; port++)
            device->addAction(QString("COM&%1").arg(port), device,
                              [port, location] { QTV_AssignPort(port, location); });
    }
    assign->menuAction()->setVisible(SER_CanAssignPort() && !assign->isEmpty());
}

// Of the window alone: the program has no part in it and waits for nothing.
void Tell(QMessageBox::Icon icon, const QString &title, const QString &message)
{
    auto *box = new QMessageBox(icon, title, message, QMessageBox::Ok, QTV_DialogParent());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText); // a path may look like a tag
    box->open();
}

} // namespace

QString QTV_DescribePort(int port)
{
    return Describe(port, SER_ListPorts());
}

int QTV_AssignPort(int port, const QString &device)
{
    if (SER_AssignPort(device.toStdString(), port) < 0) {
        Tell(QMessageBox::Warning, "Error", QString("Cannot write the link of COM%1.").arg(port));
        return -1;
    }
    // Numbers of the environment come first.
    if (qEnvironmentVariableIsSet(QString("VIREO2_COM%1").arg(port).toLatin1().constData()))
        Tell(QMessageBox::Information, "Message",
             QString("The environment variable VIREO2_COM%1 overrides this choice.").arg(port));
    return 0;
}

void QTV_EquipPortMenu(QMenu *menu)
{
    menu->addSeparator();
    QMenu *assign = menu->addMenu("&Assign");
    assign->setToolTipsVisible(true);
    QObject::connect(menu, &QMenu::aboutToShow, [assign] { RefreshMenu(assign); });
}
