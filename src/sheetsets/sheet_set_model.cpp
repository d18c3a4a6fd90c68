#include "sheetsets/sheet_set_model.h"

namespace tavlet::sheetsets {
namespace {

template <class T>
void ThrowIfNull(const host::PortPtr<T>& object) {
  if (!object) host::RaiseComError(port::kPointer);
}

template <class Object, class Call>
std::string Text(Object* object, Call call) {
  host::StringSink sink;
  host::ThrowIfFailed((object->*call)(&sink));
  return sink.text;
}

// The next member of an enumerator; null at its end.
template <class Item, class Enumerator>
host::PortPtr<Item> Next(Enumerator& enumerator) {
  host::PortPtr<Item> item;
  host::ThrowIfFailed(enumerator->Next(item.Receive()));
  return item;
}

SheetInfo ReadSheet(host::PortPtr<port::SheetSetComponent> component) {
  SheetInfo sheet;
  sheet.sheet = component;
  port::SheetSetComponent* c = component.Get();
  sheet.name = Text(c, &port::SheetSetComponent::Name);
  sheet.number = Text(c, &port::SheetSetComponent::Number);
  sheet.title = Text(c, &port::SheetSetComponent::Title);
  sheet.description = Text(c, &port::SheetSetComponent::Description);
  host::PortPtr<port::SheetSetFileReference> layout;
  host::ThrowIfFailed(c->Layout(layout.Receive()));
  ThrowIfNull(layout);
  sheet.file = Text(layout.Get(), &port::SheetSetFileReference::FileName);
  return sheet;
}

host::PortPtr<port::SheetSetComponents> SheetsOf(port::SheetSetComponent* component) {
  host::PortPtr<port::SheetSetComponents> members;
  host::ThrowIfFailed(component->Sheets(members.Receive()));
  ThrowIfNull(members);
  return members;
}

SubsetInfo ReadSubset(host::PortPtr<port::SheetSetComponent> component) {
  SubsetInfo subset;
  subset.subset = component;
  subset.description = Text(component.Get(), &port::SheetSetComponent::Description);
  subset.name = Text(component.Get(), &port::SheetSetComponent::Name);
  host::PortPtr<port::SheetSetComponents> members = SheetsOf(component.Get());
  // Every member of a subset is taken for a sheet, whatever its type.
  while (host::PortPtr<port::SheetSetComponent> member = Next<port::SheetSetComponent>(members))
    subset.sheets.push_back(ReadSheet(member));
  return subset;
}

}  // namespace

host::PortPtr<port::SheetSetComponent> OpenSheetSetComponent(port::SheetSetManager& manager,
                                                            const std::string& path) {
  host::PortPtr<port::SheetSetDatabase> database;
  host::ThrowIfFailed(manager.OpenDatabase(path.c_str(), false, database.Receive()));
  ThrowIfNull(database);
  host::PortPtr<port::SheetSetComponent> sheetSet;
  host::ThrowIfFailed(database->SheetSet(sheetSet.Receive()));
  ThrowIfNull(sheetSet);
  return sheetSet;
}

void ReadSheetSetModel(const host::PortPtr<port::SheetSetComponent>& sheetSet, SheetSetInfo& info) {
  ThrowIfNull(sheetSet);
  info.sheetSet = sheetSet;
  info.name = Text(sheetSet.Get(), &port::SheetSetComponent::Name);
  host::PortPtr<port::SheetSetComponents> members = SheetsOf(sheetSet.Get());
  while (host::PortPtr<port::SheetSetComponent> member = Next<port::SheetSetComponent>(members)) {
    const std::string type = Text(member.Get(), &port::SheetSetComponent::TypeName);
    if (type == "AcSmSubset")
      info.subsets.push_back(ReadSubset(member));
    else if (type == "AcSmSheet")
      info.sheets.push_back(ReadSheet(member));
  }
  host::PortPtr<port::SheetSetFileReferences> resources;
  host::ThrowIfFailed(sheetSet->Resources(resources.Receive()));
  ThrowIfNull(resources);
  while (host::PortPtr<port::SheetSetFileReference> reference = Next<port::SheetSetFileReference>(resources)) {
    ResourceFolderInfo folder;
    folder.reference = reference;
    folder.folder = Text(reference.Get(), &port::SheetSetFileReference::FileName);
    info.resourceFolders.push_back(std::move(folder));
  }
}

}  // namespace tavlet::sheetsets
