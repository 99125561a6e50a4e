#include "GUI/SkinSteps.h"

namespace pulsara {

void SkinSteps::attach(Skin* owner, SkinFrame* panelD, int32_t count)
{
    owner_ = owner;
    panelD_ = panelD;
    count_ = count;
}

int SkinSteps::drawImage(int32_t index, int32_t x, int32_t y)
{
    const int32_t width = cellWidth();
    return drawPart(width * index, 0, width, cellHeight(), x, y);
}

} // namespace pulsara
