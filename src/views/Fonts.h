#pragma once

/// Names fonts of the same proportions for those of the forms and charts that a system may not have. Once, before the
/// first window is built.
void installFontSubstitutes();
