// One window for one program folder: a local socket through which a second start brings the first
// one's window forward and sends it keys. The lock decides who is the first.
#pragma once

#include "platform/Gate.h"

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace vt::app {

/// Path of the socket of this program folder, which must exist.
[[nodiscard]] QString socketPath(const Gate& gate);

/// The first start's side.
class SecondStart : public QObject
{
    Q_OBJECT

public:
    explicit SecondStart(QObject* parent = nullptr);

    /// Begins to listen; only to be called by who holds the lock.
    bool listen(const Gate& gate);

    /// Whether the window can do what is asked now; asked again until it can.
    std::function<bool()> ready;

Q_SIGNALS:
    /// The window is to come forward.
    void activated();
    /// After that: an access key typed in the menu that Alt and another key opened.
    void menuKey(QChar menu, QChar entry);

private:
    void accept();
    void carryOut();

    QLocalServer m_server;
    QStringList m_waiting; ///< keys not carried out yet
};

/// The second start's side: connects to the window that runs. False: nobody answers. \a beforeKeys
/// is called once somebody does.
[[nodiscard]] bool handOver(const Gate& gate, const std::function<void()>& beforeKeys);

} // namespace vt::app
