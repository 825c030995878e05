// A time typed into one of the selection fields: moves the current file's selection, or tells
// the user why not and puts the field back.
#pragma once

class LEdFileWindow;
class LTimeFields;
class QString;
class QWidget;

namespace LTypedTime
{
// pWindow is the current file's window, null when none is open.
void Apply(QWidget* pParent, LTimeFields& fields, LEdFileWindow* pWindow, int nField, const QString& szText);
} // namespace LTypedTime
