#include <gtest/gtest.h>

#include "host/port_ptr.h"
#include "recorder.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet::sim {
namespace {

std::string Utf8(const char8_t* text) { return reinterpret_cast<const char*>(text); }

// A 4x2 picture: left half red on a blue-green background, one diagonal line.
const char8_t* kPicture =
    u8"tavlet-drawing 1\n"
    u8"path \"C:\\p.dwg\"\n"
    u8"layout \"L1\"\n"
    u8"viewport \"Model\" 2 0\n"
    u8"viewport \"L1\" 2 0\n"
    u8"viewport \"L1\" 3 5\n"
    u8"picture 4 2 background 0x00A0B0\n"
    u8"fill 0 0 1 1 0xFF0000\n";

TEST(SimScreenShot, RendersThePictureAtTheViewSizeInBlueGreenRed) {
  SimHost host;
  host.SetViewSize(8, 4);
  ASSERT_NE(host.OpenDescription(Utf8(kPicture), "p.tdd"), nullptr) << host.LastOpenError();
  host::PortPtr<port::ScreenImage> shot;
  ASSERT_EQ(host.GraphicsService()->TakeScreenShot(shot.Receive()), port::kOk);
  long w = 0, h = 0, depth = 0;
  shot->Size(&w, &h, &depth);
  EXPECT_EQ(w, 8);
  EXPECT_EQ(h, 4);
  EXPECT_EQ(depth, 24);
  struct Probe {
    long x, y;
    unsigned char b, g, r;
  };
  for (const Probe& p : {Probe{0, 0, 0x00, 0x00, 0xFF}, Probe{3, 3, 0x00, 0x00, 0xFF},
                         Probe{4, 0, 0xB0, 0xA0, 0x00}, Probe{7, 3, 0xB0, 0xA0, 0x00}}) {
    const unsigned char* px = nullptr;
    ASSERT_EQ(shot->PixelAddress(p.x, p.y, &px), port::kOk);
    EXPECT_EQ(px[0], p.b) << p.x << "," << p.y;
    EXPECT_EQ(px[1], p.g) << p.x << "," << p.y;
    EXPECT_EQ(px[2], p.r) << p.x << "," << p.y;
  }
  const unsigned char* outside = nullptr;
  EXPECT_EQ(shot->PixelAddress(8, 0, &outside), port::kInvalidArgument);

  host.SetScreenShotUnavailable(true);
  EXPECT_EQ(host.GraphicsService()->TakeScreenShot(shot.Receive()), port::kFalse);
  EXPECT_FALSE(shot);
}

TEST(SimScreenShot, ARealDrawingShowsTheThumbnailItCarries) {
  MemoryFileSystem fs;
  testing::DibShape shape;
  shape.palette.assign(256, 0);
  shape.palette[7] = 0x00302010;  // blue 0x30, green 0x20, red 0x10
  fs.AddFile("C:\\plans\\a.dwg", testing::MakeDwgWithBitmap("AC1018", shape));
  fs.AddFile("C:\\plans\\bare.dwg", std::string("AC1018") + std::string(64, '\0'));
  SimHost host(fs);
  host.SetViewSize(4, 3);
  ASSERT_NE(host.OpenDrawing("C:\\plans\\a.dwg", false), nullptr) << host.LastOpenError();
  host::PortPtr<port::ScreenImage> shot;
  ASSERT_EQ(host.GraphicsService()->TakeScreenShot(shot.Receive()), port::kOk);
  const unsigned char* px = nullptr;
  ASSERT_EQ(shot->PixelAddress(3, 2, &px), port::kOk);
  EXPECT_EQ(px[0], 0x30);
  EXPECT_EQ(px[1], 0x20);
  EXPECT_EQ(px[2], 0x10);

  // A drawing without a thumbnail still opens; it just has no picture of its own.
  EXPECT_NE(host.OpenDrawing("C:\\plans\\bare.dwg", false), nullptr) << host.LastOpenError();
}

TEST(SimScreenShot, OnlyAShadedViewportOfTheCurrentSpaceHasAGraphicsView) {
  SimHost host;
  port::Document doc = host.OpenDescription(Utf8(kPicture), "p.tdd");
  ASSERT_NE(doc, nullptr);
  auto gs = [&](long number) {
    bool exists = true;
    host.GraphicsService()->HasGsView(number, &exists);
    return exists;
  };
  EXPECT_FALSE(gs(2));  // model space in wireframe
  EXPECT_FALSE(gs(3));  // shaded, but of a layout that isn't current
  port::Value paper;
  paper.type = port::kValueShort;
  paper.integer = 0;
  host.EditorService()->SetVariable("TILEMODE", &paper);
  EXPECT_FALSE(gs(2));
  EXPECT_TRUE(gs(3));
  // The window copy of the view gives the same picture.
  port::Window view = nullptr;
  host.Frame()->DrawingView(&view);
  host::PortPtr<port::ScreenImage> copy;
  ASSERT_EQ(host.GraphicsService()->CopyViewWindow(view, copy.Receive()), port::kOk);
  const unsigned char* px = nullptr;
  copy->PixelAddress(0, 0, &px);
  EXPECT_EQ(px[2], 0xFF);
}

}  // namespace
}  // namespace tavlet::sim
