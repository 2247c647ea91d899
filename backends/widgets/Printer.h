// Printers.
#pragma once

#include <zel/platform/WindowPeer.h>

#include <QPrinter>

namespace zel::widgets {

// Pages on a printer, borrowed or owned. Throws CFileException* when it does not begin,
// CNotSupportedException* when there is none.
std::unique_ptr<DocumentDevice> PagesOn(QPrinter& printer);
std::unique_ptr<DocumentDevice> PagesOn(std::unique_ptr<QPrinter> printer);

// The dialogs, as WindowSystem says.
std::unique_ptr<DocumentDevice> OpenPrinter(QWidget* owner, PrintRequest& request);
void Preview(QWidget* owner, const std::string& title, const std::function<void(DocumentDevice&)>& draw);

}  // namespace zel::widgets
