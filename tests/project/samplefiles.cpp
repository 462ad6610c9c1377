#include "SampleFiles.h"

#include <QCoreApplication>
#include <QTextStream>

/// samplefiles write|check FOLDER: for a program of another generation of the toolkit to exchange files with.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3)
        return 2;
    if (arguments.at(1) == QStringLiteral("write"))
        return SampleFiles::write(arguments.at(2)) ? 0 : 1;
    const QStringList differences = SampleFiles::differences(arguments.at(2));
    for (const QString &difference : differences)
        QTextStream(stderr) << difference << '\n';
    return differences.isEmpty() ? 0 : 1;
}
