#include "views/StillLayout.h"

void StillLayout::invalidate()
{
    if (!m_isStill)
        QVBoxLayout::invalidate();
}
