#include "SessionManager.h"

#include <QSocketNotifier>

#include <cstdlib>
#include <list>

// After the toolkit's, as its macros have everyday names.
#include <X11/SM/SMlib.h>

namespace {

struct Client
{
    SmsConn session = nullptr;
    IceConn connection = nullptr;
    std::unique_ptr<QSocketNotifier> notifier;
    bool isSettled = false;
    bool isEnding = false;
    bool isGone = false;
};

// What the library calls has one pointer only.
std::list<Client> clients;

Client *toClient(SmPointer data)
{
    return static_cast<Client *>(data);
}

Status registerClient(SmsConn session, SmPointer, char *previousId)
{
    if (previousId) {
        std::free(previousId);
        return 0;
    }
    char *id = SmsGenerateClientID(session);
    SmsRegisterClientReply(session, id);
    std::free(id);
    SmsSaveYourself(session, SmSaveLocal, False, SmInteractStyleNone, False);
    return 1;
}

void interactRequest(SmsConn session, SmPointer, int)
{
    SmsInteract(session);
}

void interactDone(SmsConn, SmPointer, int) {}

void saveRequest(SmsConn, SmPointer, int, int, int, int, int) {}

void secondPhaseRequest(SmsConn session, SmPointer)
{
    SmsSaveYourselfPhase2(session);
}

void saveDone(SmsConn session, SmPointer data, int)
{
    Client *client = toClient(data);
    if (client->isEnding)
        SmsDie(session);
    else
        SmsSaveComplete(session);
    client->isSettled = true;
}

void closeConnection(SmsConn, SmPointer data, int count, char **reasons)
{
    SmFreeReasons(count, reasons);
    toClient(data)->isGone = true;
}

void setProperties(SmsConn, SmPointer, int count, SmProp **properties)
{
    for (int i = 0; i < count; ++i)
        SmFreeProperty(properties[i]);
    std::free(properties);
}

void deleteProperties(SmsConn, SmPointer, int count, char **names)
{
    for (int i = 0; i < count; ++i)
        std::free(names[i]);
    std::free(names);
}

void getProperties(SmsConn session, SmPointer)
{
    SmsReturnProperties(session, 0, nullptr);
}

Status newClient(SmsConn session, SmPointer, unsigned long *mask, SmsCallbacks *callbacks, char **)
{
    const IceConn connection = SmsGetIceConnection(session);
    Client *client = nullptr;
    for (Client &each : clients) {
        if (each.connection == connection)
            client = &each;
    }
    if (!client)
        return 0;
    client->session = session;
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    callbacks->register_client = {registerClient, client};
    callbacks->interact_request = {interactRequest, client};
    callbacks->interact_done = {interactDone, client};
    callbacks->save_yourself_request = {saveRequest, client};
    callbacks->save_yourself_phase2_request = {secondPhaseRequest, client};
    callbacks->save_yourself_done = {saveDone, client};
    callbacks->close_connection = {closeConnection, client};
    callbacks->set_properties = {setProperties, client};
    callbacks->delete_properties = {deleteProperties, client};
    callbacks->get_properties = {getProperties, client};
    return 1;
}

Bool everybodyMayCome(char *)
{
    return True;
}

// Or the library ends the program when a client is killed.
void ignoreInputError(IceConn connection)
{
    for (Client &client : clients)
        client.isGone = client.isGone || client.connection == connection;
}

void removeGone()
{
    clients.remove_if([](Client &client) {
        if (!client.isGone)
            return false;
        client.notifier.reset();
        if (client.session)
            SmsCleanUp(client.session);
        IceSetShutdownNegotiation(client.connection, False);
        IceCloseConnection(client.connection);
        return true;
    });
}

void hear(Client &client)
{
    if (IceProcessMessages(client.connection, nullptr, nullptr) != IceProcessMessagesSuccess)
        client.isGone = true;
}

} // namespace

class SessionManager::Private
{
public:
    void accept(IceListenObj door)
    {
        IceAcceptStatus status = IceAcceptFailure;
        const IceConn connection = IceAcceptConnection(door, &status);
        if (!connection)
            return;
        clients.emplace_back();
        Client &client = clients.back();
        client.connection = connection;
        client.notifier = std::make_unique<QSocketNotifier>(IceConnectionNumber(connection), QSocketNotifier::Read);
        QObject::connect(client.notifier.get(), &QSocketNotifier::activated, client.notifier.get(), [&client] {
            hear(client);
            // Its notifier is in the middle of its signal.
            if (client.isGone)
                client.notifier->setEnabled(false);
        });
    }

    int doorCount = 0;
    IceListenObj *doors = nullptr;
    std::vector<std::unique_ptr<QSocketNotifier>> notifiers;
};

SessionManager::SessionManager() : d(std::make_unique<Private>()) {}

SessionManager::~SessionManager()
{
    for (Client &client : clients)
        client.isGone = true;
    removeGone();
    d->notifiers.clear();
    IceFreeListenObjs(d->doorCount, d->doors);
}

bool SessionManager::start()
{
    char error[256] = {};
    IceSetIOErrorHandler(ignoreInputError);
    if (!SmsInitialize(const_cast<char *>("torture"), const_cast<char *>("1"), newClient, nullptr, everybodyMayCome,
                       sizeof(error), error) ||
        !IceListenForConnections(&d->doorCount, &d->doors, sizeof(error), error))
        return false;
    for (int i = 0; i < d->doorCount; ++i) {
        const IceListenObj door = d->doors[i];
        IceSetHostBasedAuthProc(door, everybodyMayCome);
        d->notifiers.push_back(
            std::make_unique<QSocketNotifier>(IceGetListenConnectionNumber(door), QSocketNotifier::Read));
        QObject::connect(d->notifiers.back().get(), &QSocketNotifier::activated, d->notifiers.back().get(),
                         [this, door] { d->accept(door); });
    }
    return true;
}

QString SessionManager::address() const
{
    char *list = IceComposeNetworkIdList(d->doorCount, d->doors);
    const QString address = QString::fromLocal8Bit(list);
    std::free(list);
    return address;
}

bool SessionManager::hasClient() const
{
    removeGone();
    return !clients.empty() && clients.back().isSettled;
}

void SessionManager::endSession()
{
    removeGone();
    for (Client &client : clients) {
        client.isEnding = true;
        SmsSaveYourself(client.session, SmSaveBoth, True, SmInteractStyleNone, False);
    }
}
