#include "content/reference_tree.h"

#include <unordered_set>

#include "content/references.h"
#include "host/com_error.h"

namespace tavlet::content {

namespace {

void AddKind(ReferenceNode& root, const char* title, const IdMap<DrawingPath>& entries) {
  if (entries.empty()) return;
  ReferenceNode kind{title, {}, false, {}};
  for (const auto& [id, path] : entries)
    kind.children.push_back({path.GetName(), path.Full, false, {}});
  root.children.push_back(std::move(kind));
}

void CollectTicked(const ReferenceNode& node, std::unordered_set<std::string>& seen,
                   std::vector<std::string>& out) {
  if (node.checked && !node.path.empty() && seen.insert(ReferenceKey(node.path)).second)
    out.push_back(node.path);
  for (const ReferenceNode& child : node.children) CollectTicked(child, seen, out);
}

}  // namespace

std::vector<ReferenceNode> BuildReferenceTree(port::HostSession& session, FileSystem& files) {
  std::vector<ReferenceNode> tree;
  port::DocManager& documents = *session.Documents();
  long count = 0;
  if (port::Failed(documents.DocumentCount(&count))) return tree;
  for (long i = 0; i < count; ++i) {
    port::Document doc = nullptr;
    if (port::Failed(documents.DocumentAt(i, &doc)) || !doc) continue;
    host::StringSink fileName;
    documents.FileName(doc, &fileName);
    ReferenceNode root{DrawingPath(fileName.text, files).GetName(), {}, false, {}};
    port::Database db = nullptr;
    if (port::Succeeded(documents.DatabaseOf(doc, &db)) && db) {
      int id = 0;
      ReferenceSet sets;
      CollectReferences(id, sets, *session.Databases(), db, false, files);
      AddKind(root, kExternalReferencesTitle, sets.externalReferences);
      AddKind(root, kImagesTitle, sets.images);
      AddKind(root, kOleLinksTitle, sets.oleLinks);
      AddKind(root, kHyperlinksTitle, sets.hyperlinks);
    }
    tree.push_back(std::move(root));
  }
  return tree;
}

void ToggleCheck(ReferenceNode& node) {
  node.checked = !node.checked;
  for (ReferenceNode& child : node.children) ToggleCheck(child);
}

std::vector<std::string> TickedPaths(const std::vector<ReferenceNode>& tree) {
  std::unordered_set<std::string> seen;
  std::vector<std::string> out;
  for (const ReferenceNode& root : tree) CollectTicked(root, seen, out);
  return out;
}

}  // namespace tavlet::content
