#pragma once
// ScanAgent: many components of one project scanned in one call, in the process that holds
// them. Scanning component by component from qx costs several calls between the processes for
// each (the component object made, its scan, the scanner's look-up of the buffer and its
// result); an agent made in the IDE's process (IdeControl.CreateObject) does the same steps there,
// for a list of components, and answers once.
//
// For each component the agent calls what qx calls per component: the project dispatcher's
// factory for the component's kind (Get<Kind>(project, name)), then IObject.Scan with a scan
// buffer of its own (registered once, for as long as the agent lives), so that the component
// object, its modes and the Scanner do exactly what they do for a single scan.
//
// ScanComponents(Dispatcher, Project, ProjectName, Components, Request) takes the components as
// a JSON array, [{"factory": "GetModule", "name": "Module1", "updatable": true}, ...], each
// scanned with Request or with a "request" of its own when it has one, and
// answers one outcome per component it did, in order (scan_result.h): the Scanner's results as
// the buffer keeps them, or the error that stopped the component, raised by its factory or by
// its scan.
//
// It stops after the component that ends its time slice, so that one call never holds the IDE
// for long (a `qx ide stop`, another host's look-up wait for it): the caller sends the rest
// again. At least one component is always done.
//
// Scanning ahead: while the caller is busy with an answer, the agent scans the rest, one
// component at a time, whenever the IDE has nothing else to do (unless a request writes);
// QueueComponents (same arguments) hands it components to scan so before the caller needs them,
// and answers at once. A call whose list begins with components scanned ahead gets their
// outcomes at once; the same scans run in the same order as without scanning ahead, only
// sooner. A scan ahead that would call the caller (a problem for its log) is left for the call.

#include <chrono>
#include <deque>
#include <memory>
#include <string>

#include <nlohmann/json_fwd.hpp>

#include "automation/object.h"

namespace host::scan {

class ScanBuffer;

class ScanAgent : public automation::Object {
 public:
  static constexpr const char* kProgId = "qxlib41.ScanAgent";
  // How long one ScanComponents call goes on starting components.
  static constexpr std::chrono::milliseconds kSlice{100};

  ScanAgent();
  ~ScanAgent() override;
  ScanAgent(const ScanAgent&) = delete;
  ScanAgent& operator=(const ScanAgent&) = delete;

  const automation::ClassInfo& Class() const override;

  std::string ScanComponents(const automation::ObjectRef& dispatcher,
                             const automation::ObjectRef& project, const std::string& projectName,
                             const std::string& components, const std::string& request);
  void QueueComponents(const automation::ObjectRef& dispatcher,
                       const automation::ObjectRef& project, const std::string& projectName,
                       const std::string& components, const std::string& request);

 private:
  struct Item {
    std::string factory;
    std::string name;
    bool updatable = false;
    std::string request;
    bool operator==(const Item&) const = default;
  };
  static Item ItemOf(const nlohmann::json& item, const std::string& request);
  // Whether a scan with the request writes nothing.
  static bool ReadOnly(const std::string& request);

  // The buffer through which the component objects' scans answer, registered on first use.
  void Register();
  // One component scanned: its outcome, encoded.
  std::string ScanOne(const Item& item);
  // The caller's list of components, less the ones scanned ahead that begin it; those scanned
  // ahead that do not are dropped, as is everything of another project.
  std::deque<Item> Align(const automation::ObjectRef& dispatcher,
                         const automation::ObjectRef& project, const std::string& projectName,
                         const std::string& components, const std::string& request);
  // The components left to scan, ahead when their requests write nothing.
  void Wait(std::deque<Item> items);
  // One component of the rest scanned ahead; false when none is left.
  bool ScanAhead();

  std::shared_ptr<ScanBuffer> buffer_;
  std::string bufferName_;
  int32_t cookie_ = 0;
  // The project of the last call, and what it left: the components still to scan, and those
  // scanned ahead with their outcomes, in order.
  automation::ObjectRef dispatcher_;
  automation::ObjectRef project_;
  std::string projectName_;
  std::deque<Item> waiting_;
  std::deque<std::pair<Item, std::string>> ahead_;
};

}  // namespace host::scan
