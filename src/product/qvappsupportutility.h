#pragma once

#include "platform/nsalert.h"
#include "platform/nsworkspace.h"

#include <QString>

#include <functional>

namespace quorvane {

/// What the shell and the documents both tell the user about releases and the vendor's pages.
class QVAppSupportUtility final
{
public:
    /// The display form of a Release Number: "2.6.1" for 20601, "" for fewer than four digits.
    static QString calcReleaseString(qint64 release);

    /// These open the vendor's home page, the product's page and the vendor's page on Twitter.
    static void visitUs(NSWorkspace &workspace);
    static void visitAppUrl(NSWorkspace &workspace);
    static void visitTwitter(NSWorkspace &workspace);
    static void visitArdelis(NSWorkspace &workspace); ///< The same as visitUs.

    /// Begins a mail to the vendor's support in the user's mail program. It sends none.
    static void emailUs(NSWorkspace &workspace);
    static void emailArdelis(NSWorkspace &workspace); ///< The same as emailUs.

    /// Tells that a document is newer than the program; its first button opens the home page.
    /// \a answered, if there is one, learns whether the first button was pressed.
    static void sayFilecreatedWithANewerVersion(ModalAlerts &alerts, NSWorkspace &workspace,
                                                const std::function<void(bool)> &answered = {});
    /// The same of a data file of the program's own.
    static void dataIn_ApplicationSupportFolder_CreatedWithANewerVersion(
        ModalAlerts &alerts, NSWorkspace &workspace,
        const std::function<void(bool)> &answered = {});

private:
    static void sayNewer(const NSAlert &alert, ModalAlerts &alerts, NSWorkspace &workspace,
                         const std::function<void(bool)> &answered);
};

} // namespace quorvane
