// The two designers the catalog knows: the DHTML page and the user connection. Their
// properties keep the designer's own order, which is the order of their files.

#include "ide/form/catalog_data.h"

namespace ide::form::data {
namespace {

// The order of VB6's DHTML page template. Every setting is written; the page's HTML follows as
// a companion record when it is kept inside the designer (SourceFile empty). The page's id
// starts as the designer's name. Since every setting is written, the defaults serve only a new
// page; they are our choice (zero, empty, and the settings most pages have).
constexpr PropertyInfo kDhtmlPageProperties[] = {
    Name(),
    Client("ClientHeight"),
    Client("ClientLeft"),
    Client("ClientTop"),
    Client("ClientWidth"),
    Hidden(Always(Lng("_ExtentX", 0))),
    Hidden(Always(Lng("_ExtentY", 0))),
    Always(Word("SourceFile")),
    Always(Word("BuildFile")),
    Always(Lng("BuildMode", 0)),
    Hidden(Always(Lng("TypeLibCookie", 0))),
    Always(Bool("AsyncLoad", false)),
    Always(Created(Word("id"), kObjectName)),
    Always(Bool("ShowBorder", true)),
    Always(Bool("ShowDetail", false)),
    Always(Bool("AbsPos", false)),
    Hidden(Blob("HTMLDocument")),
};

// A user connection persists an RDO connection. We have seen no file of one, so the order is
// that of the settings the driver reads, and the defaults are RDO's. Updatable, Transactions
// and Version describe the open connection: read-only, never saved; with no connection open
// they answer an updatable connection without transactions and no version.
constexpr PropertyInfo kUserConnectionProperties[] = {
    Name(),
    Word("Connect"),
    Word("Owner"),
    Range(Lng("QueryTimeout", 30), 0, 2147483647),
    Range(Lng("LoginTimeout", 15), 0, 2147483647),
    Word("LogMessages"),
    ReadOnly(Derived(Bool("Updatable", true))),
    ReadOnly(Derived(Word("Version"))),
    ReadOnly(Derived(Bool("Transactions", false))),
    Enum("CursorDriver", kCursorDriver, 0),
    Range(Lng("AsyncCheckInterval", 1000), 0, 2147483647),
};

}  // namespace

const ClassInfo kDhtmlPage{
    kDhtmlPageDesignerId,     kDhtmlPageClassId,   "DHTMLPage", ClassKind::kDhtmlPage, -1,
    PropertyOrder::kDesigner, kDhtmlPageProperties};
// No CLSID is known for the user connection designer: it is found by its DesignerID only.
const ClassInfo kUserConnection{kUserConnectionDesignerId,  {}, "UserConnection",
                                ClassKind::kUserConnection, -1, PropertyOrder::kDesigner,
                                kUserConnectionProperties};

}  // namespace ide::form::data
