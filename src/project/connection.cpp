#include "project/connection.h"

#include <memory>
#include <utility>

#include "automation/casefold.h"
#include "contracts/host_classes.h"
#include "foundation/globals.h"
#include "foundation/operation.h"
#include "foundation/vxhandler.h"
#include "project/dispatcher.h"

namespace project {
namespace {

using automation::Dispatch;
using automation::ObjectRef;
using foundation::Operation;

constexpr const char* kClass = "Connection";

// The sink that the IDE's project event source calls: it passes ItemAdded and ItemRemoved on to
// the connection's handlers. It holds the connection weakly, so that the source, which the
// connection holds, does not keep the connection alive.
class ProjectEventSink : public automation::Object {
 public:
  explicit ProjectEventSink(std::weak_ptr<Connection> connection)
      : connection_(std::move(connection)) {}

  const automation::ClassInfo& Class() const override {
    static const automation::ClassInfo info =
        automation::ClassBuilder<ProjectEventSink>("ProjectEvents")
            .Method("ItemAdded", &ProjectEventSink::ItemAdded, {"VBProject"})
            .Method("ItemRemoved", &ProjectEventSink::ItemRemoved, {"VBProject"})
            .Build();
    return info;
  }

  void ItemAdded(const ObjectRef& vbProject) {
    if (auto connection = connection_.lock()) connection->ProjectEvents_ItemAdded(vbProject);
  }
  void ItemRemoved(const ObjectRef& vbProject) {
    if (auto connection = connection_.lock()) connection->ProjectEvents_ItemRemoved(vbProject);
  }

 private:
  std::weak_ptr<Connection> connection_;
};

// The problem context of an event handler, open until the handler returns.
ObjectRef OpenContext(const char* handler) {
  return foundation::CreateContext(foundation::ProjectName(), kClass, handler, true, true);
}

}  // namespace

const automation::ClassInfo& Connection::Class() const {
  static const automation::ClassInfo info =
      automation::ClassBuilder<Connection>("Connection")
          .Description("Quarrix VB AddIn")
          .Implements("IDTExtensibility")
          .Method("OnConnection", &Connection::IDTExtensibility_OnConnection,
                  {"VBE", "ConnectMode", "AddInInst", "custom"})
          .Method("OnDisconnection", &Connection::IDTExtensibility_OnDisconnection,
                  {"RemoveMode", "custom"})
          .Method("OnStartupComplete", &Connection::IDTExtensibility_OnStartupComplete, {"custom"})
          .Method("OnAddInsUpdate", &Connection::IDTExtensibility_OnAddInsUpdate, {"custom"})
          .Build();
  return info;
}

void Connection::IDTExtensibility_OnConnection(const ObjectRef& vbe, int32_t /*connectMode*/,
                                               const ObjectRef& /*addInInst*/,
                                               const automation::Variant& /*custom*/) {
  Operation(kClass, "IDTExtensibility_OnConnection", [&] {
    vbe_ = vbe;
    const ObjectRef events = Dispatch(vbe_).Get("Events").ToObject();
    projectEvents_ = Dispatch(events).Get("VBProjectsEvents").ToObject();
    sink_ = std::make_shared<ProjectEventSink>(
        std::static_pointer_cast<Connection>(shared_from_this()));
    Dispatch(projectEvents_).Call("Advise", sink_);
  });
}

void Connection::IDTExtensibility_OnDisconnection(int32_t /*removeMode*/,
                                                  const automation::Variant& /*custom*/) {
  Operation(kClass, "IDTExtensibility_OnDisconnection", [&] { vbe_.reset(); });
}

bool Connection::IsVb6() const {
  const std::string version = Dispatch(vbe_).Get("Version").ToString();
  return version.size() >= 2 && version[0] == '6' && version[1] == '.';
}

void Connection::ProjectEvents_ItemAdded(const ObjectRef& vbProject) {
  const ObjectRef context = OpenContext("ProjectEvents_ItemAdded");
  Operation(kClass, "ProjectEvents_ItemAdded", [&] {
    if (!IsVb6()) return;
    const Dispatch project(vbProject);
    const std::string fileName = project.Get("FileName").ToString();
    if (fileName.empty()) return;  // never saved: nothing the host could name
    auto dispatcher = std::make_shared<Dispatcher>();
    ObjectRef parent = shared_from_this();
    ObjectRef ideProject = vbProject;
    dispatcher->Initialize(parent, ideProject);
    const int32_t cookie =
        contracts::HostUtility::Get().RegisterObject(fileName, ObjectRef(dispatcher));
    entries_.resize(static_cast<size_t>(count_) + 1);
    entries_[static_cast<size_t>(count_)] =
        Entry{project.Get("FileName").ToString(), cookie, std::move(dispatcher)};
    ++count_;
  });
}

void Connection::ProjectEvents_ItemRemoved(const ObjectRef& vbProject) {
  const ObjectRef context = OpenContext("ProjectEvents_ItemRemoved");
  Operation(kClass, "ProjectEvents_ItemRemoved", [&] {
    if (!IsVb6()) return;
    const Dispatch project(vbProject);
    const int32_t walked = count_;
    int32_t write = 0;
    for (int32_t position = 0; position < walked; ++position) {
      Entry& entry = entries_[static_cast<size_t>(position)];
      if (!automation::EqualsNoCaseUnicode(project.Get("FileName").ToString(), entry.fileName)) {
        if (write < position) entries_[static_cast<size_t>(write)] = std::move(entry);
        ++write;
        continue;
      }
      Dispatch(entry.dispatcher).Call("TearDown");
      entry.dispatcher.reset();
      contracts::HostUtility::Get().RevokeObject(entry.cookie);
      --count_;
    }
    entries_.resize(static_cast<size_t>(count_) + 1);
  });
}

}  // namespace project
