#pragma once

#include <QDir>
#include <QProcessEnvironment>
#include <memory>

struct _UMockdevTestbed;

namespace loggersim {

/// A small system tree with USB loggers in it, which a program sees instead of the real one when it runs with
/// programEnvironment(): sysfs as the kernel would show it, and the device nodes of the serial ports.
/// A plug is a number from 0; the logger in plug 2 is the serial port ttyACM2.
class UsbTree
{
public:
    UsbTree();

    /// The folder that stands for "/"; it goes away with the tree.
    QString root() const { return m_root.path(); }
    static QString portName(int plug);

    /// Lists a logger with this product text whose serial port leads to @p terminal.
    bool plugIn(int plug, const QString &product, const QString &terminal);
    void pullOut(int plug);

    /// @p base plus what makes a program look into this tree.
    QProcessEnvironment programEnvironment(const QProcessEnvironment &base) const;
    /// Whether the library that redirects a program is installed.
    static bool canRedirect();

private:
    QString usbDevice(int plug) const;
    QString path(const QString &relative) const { return m_root.filePath(relative); }
    QString interfaceOf(int plug) const;
    bool writeUsbDevice(int plug, const QString &product) const;
    bool writePort(int plug, const QString &terminal) const;

    struct Unref
    {
        void operator()(_UMockdevTestbed *testbed) const;
    };
    // The mock's library makes the root and answers what a redirected program asks of a port. The rest of the tree is
    // plain files: the library's calls for that work only within a redirected process, and this one is not.
    std::unique_ptr<_UMockdevTestbed, Unref> m_testbed;
    QDir m_root;
};

} // namespace loggersim
