#include <gtest/gtest.h>

#include "content/db/document_lock.h"
#include "content/db/objects.h"
#include "content_fixture.h"

namespace tavlet::content {
namespace {

TEST(DatabaseObjects, StayOpenWhileHeldAndCloseWithTheirOwner) {
  SimDrawing d("layout \"A1\"\nimage \"A1\" \"C:\\i.png\" hyperlink \"h\"\n");
  {
    db::BlockTable table = db::BlockTable::Open(d.Database(), d.db);
    EXPECT_EQ(d.OpenObjects(), 1);
    db::RecordWalk walk = table.Records();
    EXPECT_EQ(d.OpenObjects(), 2);
    port::ObjectId model = 0, layout = 0;
    ASSERT_TRUE(walk.Next(model));
    ASSERT_TRUE(walk.Next(layout));
    db::BlockRecord record = db::BlockRecord::Open(d.Database(), layout);
    db::EntityWalk entities = record.Entities();
    db::Entity entity;
    ASSERT_TRUE(entities.Next(entity));
    EXPECT_EQ(d.OpenObjects(), 5);
    EXPECT_EQ(entity.Info().kind, port::kEntityRasterImage);
    EXPECT_EQ(entity.ImageFile(), std::optional<std::string>("C:\\i.png"));
    EXPECT_EQ(entity.Hyperlinks(), std::vector<std::string>{"h"});
    EXPECT_EQ(d.OpenObjects(), 5);  // the collection went with the read
    EXPECT_FALSE(entities.Next(entity));
    EXPECT_FALSE(entity);
    EXPECT_EQ(d.OpenObjects(), 3);  // the entity and the ended walk are closed
    EXPECT_FALSE(walk.Next(model));
    EXPECT_EQ(d.OpenObjects(), 2);
  }
  EXPECT_EQ(d.OpenObjects(), 0);
}

TEST(DatabaseObjects, AWalkEndsAtItsFirstFailure) {
  SimDrawing d("block \"A\"\nblock \"B\"\n");
  d.host.Faults().Fail("SymbolTableIterator::Next", 2, port::kFail, "");
  db::BlockTable table = db::BlockTable::Open(d.Database(), d.db);
  db::RecordWalk walk = table.Records();
  port::ObjectId id = 0;
  EXPECT_TRUE(walk.Next(id));
  EXPECT_FALSE(walk.Next(id));
  EXPECT_FALSE(walk.Next(id));  // no retry of a failed walk
  EXPECT_EQ(d.host.Faults().Count("SymbolTableIterator::Next"), 2);
}

TEST(DocumentLock, UnlocksOnlyWhatItLocked) {
  SimDrawing d("");
  {
    db::DocumentLock lock(*d.host.Documents(), d.doc);
    EXPECT_TRUE(lock.Locked());
    EXPECT_TRUE(d.host.IsLocked(d.doc));
  }
  EXPECT_FALSE(d.host.IsLocked(d.doc));
  d.host.Faults().Fail("DocManager::LockDocument", 1, port::kFail, "");
  {
    db::DocumentLock lock(*d.host.Documents(), d.doc);
    EXPECT_FALSE(lock.Locked());
  }
  EXPECT_EQ(d.host.Faults().Count("DocManager::UnlockDocument"), 1);
  db::DocumentLock none(*d.host.Documents(), nullptr);
  EXPECT_FALSE(none.Locked());
}

}  // namespace
}  // namespace tavlet::content
