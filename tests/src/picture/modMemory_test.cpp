#include "picture/modMemory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "app/base/handles.h"
#include "picture/current_picture.h"
#include "picture/modDIBToPicture.h"

namespace tessary {
namespace {

HLOCAL Movable(size_t size) {
    return LocalAlloc(LMEM_MOVEABLE | LMEM_ZEROINIT, size);
}

int __stdcall CrashAlways(FARPROC, LONG_PTR) {
    return 0;
}

TEST(PictureMemoryTest, NullAndFreedHandlesAreHarmless) {
    EXPECT_FALSE(IsLocalHandleValid(nullptr));
    EXPECT_EQ(LockLocalHandle(nullptr), kInvalidLock);
    EXPECT_EQ(UnlockLocalHandle(nullptr), -1);
    EXPECT_EQ(LocalHandleSize(nullptr), -1);
    HLOCAL none = nullptr;
    EXPECT_FALSE(FreeLocalHandle(none));

    HLOCAL block = Movable(64);
    const HLOCAL stale = block;
    EXPECT_TRUE(FreeLocalHandle(block));
    EXPECT_EQ(block, nullptr);
    HLOCAL again = stale;
    EXPECT_FALSE(IsLocalHandleValid(stale));
    EXPECT_EQ(LockLocalHandle(stale), kInvalidLock);
    EXPECT_EQ(LocalHandleSize(stale), -1);
    EXPECT_FALSE(FreeLocalHandle(again));
    EXPECT_EQ(again, nullptr);
}

TEST(PictureMemoryTest, LocksUnlocksAndSizes) {
    HLOCAL block = Movable(1064);
    EXPECT_EQ(UnlockLocalHandle(block), -1);  // not locked
    void* const address = LockLocalHandle(block);
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(LockLocalHandle(block), address);
    EXPECT_EQ(LockLocalHandle(block), address);
    EXPECT_EQ(LocalHandleSize(block), 1064);
    EXPECT_TRUE(FreeLocalHandle(block));  // locked three times
    EXPECT_EQ(block, nullptr);

    HLOCAL fixed = LocalAlloc(LMEM_FIXED, 8);
    EXPECT_TRUE(IsLocalHandleValid(fixed));
    EXPECT_TRUE(FreeLocalHandle(fixed));
}

TEST(PictureMemoryTest, ACrashInForeignMemoryIsContained) {
    SetMemoryGuard(&CrashAlways);
    const HLOCAL block = Movable(64);
    HLOCAL freed = block;
    EXPECT_FALSE(FreeLocalHandle(freed));
    EXPECT_EQ(freed, nullptr);
    HLOCAL taken = block;
    EXPECT_FALSE(TakeForeignHandle(taken));
    EXPECT_EQ(taken, nullptr);
    SetMemoryGuard(nullptr);
    taken = block;
    EXPECT_TRUE(TakeForeignHandle(taken));
    EXPECT_TRUE(FreeLocalHandle(taken));
    HLOCAL empty = Movable(0);
    EXPECT_TRUE(TakeForeignHandle(empty));
    EXPECT_EQ(empty, nullptr);
}

TEST(PictureMemoryTest, HeaderComesFromTheInfoBlockOnly) {
    dib::BitmapInfoHeader header{};
    header.width = 77;
    EXPECT_FALSE(GetPictureHeader({}, header));
    EXPECT_EQ(header.width, 77);
    OwnedPicture shortBlock(PicturePair{Movable(12), nullptr});
    EXPECT_TRUE(GetPictureHeader(shortBlock.Get(), header));
    EXPECT_EQ(header.width, 77);  // nothing is read behind a block that is too short
    OwnedPicture picture(PicturePair{Movable(40), nullptr});
    {
        const BlockLock lock(picture.Get().info);
        static_cast<dib::BitmapInfoHeader*>(lock.Address())->width = 5;
    }
    EXPECT_TRUE(GetPictureHeader(picture.Get(), header));
    EXPECT_EQ(header.width, 5);
    EXPECT_EQ(UnlockLocalHandle(picture.Get().info), -1);  // every lock was taken off again
}

TEST(PictureMemoryTest, CurrentPictureFreesItsPredecessor) {
    const PicturePair first{Movable(40), Movable(4)};
    SetCurrentPicture(first);
    EXPECT_EQ(CurrentPicture().info, first.info);
    SetCurrentPicture({Movable(40), Movable(4)});
    EXPECT_FALSE(IsLocalHandleValid(first.info));
    EXPECT_FALSE(IsLocalHandleValid(first.bits));
    const PicturePair second = CurrentPicture();
    SetCurrentPicture({});
    EXPECT_FALSE(IsLocalHandleValid(second.info));
    EXPECT_EQ(CurrentPicture().info, nullptr);
}

TEST(DIBToPictureTest, MakesPicturesThatOwnTheirBitmap) {
    struct {
        BITMAPINFOHEADER header;
        uint32_t bits[4];
    } dib{};
    dib.header = {40, 2, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const UniqueScreenDc screen(GetDC(nullptr));
    IPicture* picture = nullptr;
    EXPECT_FALSE(DIBToPicture(screen.Get(), {&dib.header, nullptr}, &picture));
    EXPECT_FALSE(DIBToPicture(screen.Get(), {nullptr, dib.bits}, &picture));
    EXPECT_EQ(picture, nullptr);

    ASSERT_TRUE(DIBToPicture(screen.Get(), {&dib.header, dib.bits}, &picture));
    OLE_HANDLE handle = 0;
    EXPECT_EQ(picture->get_Handle(&handle), S_OK);
    const auto bitmap = reinterpret_cast<HBITMAP>(static_cast<ULONG_PTR>(handle));
    EXPECT_EQ(GetObjectType(bitmap), static_cast<DWORD>(OBJ_BITMAP));
    picture->Release();
    EXPECT_EQ(GetObjectType(bitmap), 0u);
}

}  // namespace
}  // namespace tessary
