#pragma once
// The layout every window of the application that ends with OK or Cancel
// shares: its content above, the two buttons below, named "ok" and "cancel" for
// automation, OK the default button.

class QDialog;
class QWidget;

void twLayOutOkCancelDialog(QDialog* dialog, QWidget* content);
