#include "command_line.h"
#include "commands.h"

#include <QString>
#include <QStringList>

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return Workbench::run(Workbench::parseCommandLine(arguments), argv[0]);
}
