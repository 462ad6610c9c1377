#pragma once

#include <QPixmap>

/// A picture at the density of the sharpest screen: the toolkit looks for the "@2x" variant only where it loads icons.
QPixmap sharpPixmap(const QString &path);
/// The same for a given density.
QPixmap sharpPixmap(const QString &path, qreal density);
