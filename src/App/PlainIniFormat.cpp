#include "App/PlainIniFormat.h"

#include <QIODevice>
#include <QStringList>

namespace pulsara {

namespace {

const QString kGeneral = QStringLiteral("General");

// One character of an escape, \n or \x00e9 as Qt writes them; `at` is past the backslash and
// is left past the escape.
QChar unescaped(QStringView text, qsizetype& at)
{
    QChar code = text[at++];
    switch (code.unicode()) {
    case 'n': return u'\n';
    case 'r': return u'\r';
    case 't': return u'\t';
    case '0': return u'\0';
    case 'x': {
        char16_t value = 0;
        for (int digits = 0; digits < 4 && at < text.size(); ++digits, ++at) {
            char16_t digit = text[at].toLower().unicode();
            if (digit >= u'0' && digit <= u'9')
                value = char16_t(value * 16 + (digit - u'0'));
            else if (digit >= u'a' && digit <= u'f')
                value = char16_t(value * 16 + (digit - u'a' + 10));
            else
                break;
        }
        return QChar(value);
    }
    default: return code;
    }
}

// A value's items: commas outside quotes separate them; whitespace outside quotes around an
// item is not part of it.
QStringList items(QStringView text)
{
    QStringList result;
    QString item;
    qsizetype trailingSpaces = 0;
    bool quoted = false;
    for (qsizetype at = 0; at < text.size();) {
        QChar c = text[at++];
        if (c == u'"') {
            quoted = !quoted;
            trailingSpaces = 0;
        } else if (c == u'\\' && at < text.size()) {
            item += unescaped(text, at);
            trailingSpaces = 0;
        } else if (c == u',' && !quoted) {
            item.chop(trailingSpaces);
            result << item;
            item.clear();
            trailingSpaces = 0;
        } else if (c.isSpace() && !quoted) {
            if (!item.isEmpty())
                item += c, ++trailingSpaces;
        } else {
            item += c;
            trailingSpaces = 0;
        }
    }
    item.chop(trailingSpaces);
    result << item;
    return result;
}

QString escaped(const QString& item)
{
    QString text = item.startsWith(u'@') ? QStringLiteral("@") + item : item;
    bool quote = text.contains(u',') || text.contains(u';') || text.startsWith(u' ') || text.endsWith(u' ');
    QString result = quote ? QStringLiteral("\"") : QString();
    for (QChar c : text) {
        if (c == u'\\' || c == u'"')
            result += u'\\', result += c;
        else if (c == u'\n')
            result += QStringLiteral("\\n");
        else if (c == u'\r')
            result += QStringLiteral("\\r");
        else if (c == u'\t')
            result += QStringLiteral("\\t");
        else if (c.unicode() < 0x20)
            result += QStringLiteral("\\x%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return quote ? result + u'"' : result;
}

bool readIni(QIODevice& device, QSettings::SettingsMap& map)
{
    QString prefix;
    const QStringList lines = QString::fromUtf8(device.readAll()).split(u'\n');
    for (const QString& rawLine : lines) {
        QStringView line = QStringView(rawLine).trimmed();
        if (line.isEmpty() || line.startsWith(u';') || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            QString section = line.mid(1, line.size() - 2).trimmed().toString();
            prefix = section.isEmpty() || section == kGeneral ? QString() : section + u'/';
            continue;
        }
        qsizetype equals = line.indexOf(u'=');
        if (equals <= 0)
            continue;
        QString key = prefix + line.left(equals).trimmed().toString();
        QStringView value = line.mid(equals + 1).trimmed();
        // A value that names a type (@Variant, @ByteArray, @Invalid) is passed over unread.
        if (value.startsWith(u'@') && !value.startsWith(u"@@"))
            continue;
        QStringList parts = items(value);
        if (parts.size() == 1) {
            QString text = parts.front();
            map.insert(key, text.startsWith(u"@@") ? text.mid(1) : text);
        } else {
            map.insert(key, parts);
        }
    }
    return true;
}

bool writeIni(QIODevice& device, const QSettings::SettingsMap& map)
{
    // Keys without a section first, under [General], then each section's keys together.
    QMap<QString, QStringList> sections;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        qsizetype slash = entry.key().indexOf(u'/');
        QString section = slash < 0 ? kGeneral : entry.key().left(slash);
        QString key = slash < 0 ? entry.key() : entry.key().mid(slash + 1);
        const QVariant& value = entry.value();
        QStringList values;
        for (const QString& item : value.typeId() == QMetaType::QStringList ? value.toStringList() : QStringList { value.toString() })
            values << escaped(item);
        sections[section] << key + u'=' + values.join(QStringLiteral(", "));
    }
    QString text;
    auto writeSection = [&](const QString& name) {
        text += u'[' + name + QStringLiteral("]\n") + sections.take(name).join(u'\n') + QStringLiteral("\n\n");
    };
    if (sections.contains(kGeneral))
        writeSection(kGeneral);
    while (!sections.isEmpty())
        writeSection(sections.firstKey());
    return device.write(text.toUtf8()) >= 0;
}

} // namespace

QSettings::Format plainIniFormat()
{
    static const QSettings::Format format = QSettings::registerFormat(QStringLiteral("ini"), readIni, writeIni);
    return format;
}

} // namespace pulsara
