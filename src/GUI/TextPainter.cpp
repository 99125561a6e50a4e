#include "GUI/TextPainter.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QHash>
#include <QPainter>
#include <QStaticText>

namespace pulsara {

namespace {

struct ShapedText {
    QStaticText text;
    qreal width;
    qreal lineHeight;
};

using ShapedTexts = QHash<std::pair<QFont, QString>, ShapedText>;

// The shaped texts hold on to the font engines, which go with the application: so do they.
ShapedTexts& shapedTexts()
{
    static ShapedTexts cache;
    [[maybe_unused]] static const bool clearedWithTheApplication = [] {
        qAddPostRoutine([] { shapedTexts().clear(); });
        return true;
    }();
    return cache;
}

// Shaping is most of what a line of text costs, and the same few texts (row labels, captions,
// numbers) are drawn again on every scroll and every change: each is shaped once per font.
// Painting happens on the GUI thread only.
const ShapedText& shaped(const QString& text, const QFont& font)
{
    constexpr qsizetype kMostTexts = 4096;
    ShapedTexts& cache = shapedTexts();
    auto key = std::make_pair(font, text);
    auto found = cache.constFind(key);
    if (found != cache.cend())
        return *found;
    if (cache.size() >= kMostTexts)
        cache.clear();
    QStaticText staticText(text);
    staticText.setTextFormat(Qt::PlainText);
    staticText.prepare(QTransform(), font);
    QFontMetricsF metrics(font);
    return *cache.insert(key, { staticText, metrics.horizontalAdvance(text), metrics.height() });
}

} // namespace

Qt::Alignment TextPainter::horizontalAlignment(int32_t align, int textWidth, int boxWidth)
{
    switch (align) {
    case kAuto:
        return textWidth <= boxWidth ? Qt::AlignHCenter : Qt::AlignRight;
    case kRight:
        return Qt::AlignRight;
    case kLeft:
        return Qt::AlignLeft;
    default:
        return Qt::AlignHCenter;
    }
}

int TextPainter::drawRect(int32_t x, int32_t y, int32_t width, int32_t height)
{
    if (!text_ || !dc_)
        return 0;
    const ShapedText& text = shaped(QString::fromUtf16(text_), dc_->font());
    // Placed where QPainter's drawText would place it in the box: centred on the line's height,
    // and clipped to the box when it does not fit.
    Qt::Alignment alignment = horizontalAlignment(align_, qRound(text.width), width);
    qreal left = x;
    if (alignment == Qt::AlignRight)
        left += width - text.width;
    else if (alignment == Qt::AlignHCenter)
        left += (width - text.width) / 2;
    qreal top = y + (height - text.lineHeight) / 2;
    bool overflows = text.width > width || text.lineHeight > height;
    if (overflows) {
        dc_->save();
        dc_->setClipRect(QRect(x, y, width, height), Qt::IntersectClip);
    }
    QPainter::CompositionMode previous = dc_->compositionMode();
    dc_->setCompositionMode(QPainter::CompositionMode_SourceOver);
    dc_->drawStaticText(QPointF(left, top), text.text);
    dc_->setCompositionMode(previous);
    if (overflows)
        dc_->restore();
    return 1;
}

} // namespace pulsara
