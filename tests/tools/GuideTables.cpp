#include "GuideTables.h"

#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

QString textOf(const char* file)
{
    QFile source(QString(ROLLIX_SOURCE_DIR) + "/" + file);
    EXPECT_TRUE(source.open(QIODevice::ReadOnly)) << file;
    return QString::fromUtf8(source.readAll());
}

std::vector<QStringList> rowsOf(const char* file, const char* pattern)
{
    std::vector<QStringList> rows;
    QRegularExpressionMatchIterator matches =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(textOf(file));
    while (matches.hasNext())
        rows.push_back(matches.next().capturedTexts());
    return rows;
}
