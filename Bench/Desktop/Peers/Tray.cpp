// The least that a program with a status item is: Qt, and an icon.
#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(Qt::gray);
    QSystemTrayIcon item{QIcon(picture)};
    item.show();
    return QApplication::exec();
}
