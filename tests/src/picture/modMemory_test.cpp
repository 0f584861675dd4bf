#include "picture/modMemory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "app/base/handles.h"
#include "picture/current_picture.h"
#include "picture/modDIBToPicture.h"
#include "picture/picture.h"
#include "picture/save/save_picture.h"

namespace tessary {
namespace {

HLOCAL Movable(size_t size) {
    return LocalAlloc(LMEM_MOVEABLE, size);
}

std::string HeaderOf(int32_t width, int32_t height, uint16_t bitCount) {
    const dib::BitmapInfoHeader header{40, width, height, 1, bitCount, 0, 0, 0, 0, 0, 0};
    return {reinterpret_cast<const char*>(&header), sizeof(header)};
}

OwnedBlock BlockOf(const std::string& bytes) {
    return FilledBlock(bytes.size(), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), bytes.data(), bytes.size());
    });
}

PicturePair PairOf(const std::string& info, const std::string& bits) {
    return {BlockOf(info).Release(), BlockOf(bits).Release()};
}

int __stdcall CrashAlways(FARPROC, LONG_PTR) {
    return 0;
}

TEST(PictureMemoryTest, NullAndFreedHandlesAreHarmless) {
    HLOCAL block = Movable(64);
    const HLOCAL stale = block;
    EXPECT_TRUE(FreeLocalHandle(block));
    EXPECT_EQ(block, nullptr);
    for (HLOCAL handle : {HLOCAL{}, stale}) {
        EXPECT_FALSE(IsLocalHandleValid(handle));
        EXPECT_EQ(LockLocalHandle(handle), kInvalidLock);
        EXPECT_EQ(UnlockLocalHandle(handle), -1);
        EXPECT_EQ(LocalHandleSize(handle), -1);
        EXPECT_FALSE(FreeLocalHandle(handle));
        EXPECT_EQ(handle, nullptr);
    }
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
    taken = Movable(0);
    EXPECT_TRUE(TakeForeignHandle(taken));
    EXPECT_EQ(taken, nullptr);
}

TEST(PictureMemoryTest, HeaderComesFromTheInfoBlockOnly) {
    dib::BitmapInfoHeader header{};
    EXPECT_FALSE(GetPictureHeader({}, header));
    const OwnedBlock shortBlock(Movable(12));
    const OwnedBlock info = BlockOf(HeaderOf(5, 1, 24));
    // Nothing is read behind a block that is too short.
    for (const auto& [block, width] : {std::pair(shortBlock.Get(), 0), {info.Get(), 5}}) {
        EXPECT_TRUE(GetPictureHeader({block, nullptr}, header));
        EXPECT_EQ(header.width, width);
        EXPECT_EQ(LocalFlags(block) & LMEM_LOCKCOUNT, 0u);
    }
}

TEST(PictureTest, APairStaysWhereItIsUntilItIsFreed) {
    const PicturePair pair = PairOf(HeaderOf(1, -2, 32), "toprlowr");
    Picture picture = Picture::FromPair(pair);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture.Height(), 2);
    EXPECT_EQ(picture.View().Row(1)[0], 'l');
    EXPECT_EQ(LocalFlags(pair.bits) & LMEM_LOCKCOUNT, 1u);

    Picture other = std::move(picture);
    EXPECT_FALSE(picture);
    const PicturePair released = other.ReleasePair();
    EXPECT_FALSE(other);
    EXPECT_EQ(released.bits, pair.bits);
    EXPECT_EQ(LocalFlags(pair.info) & LMEM_LOCKCOUNT, 0u);
    SetCurrentPicture(Picture::FromPair(released), L"torn");
    EXPECT_EQ(CurrentPicture().Width(), 1);
    SetCurrentPicture(Picture::FromPair(PairOf(HeaderOf(3, 1, 8), std::string(4, 'x'))));
    EXPECT_FALSE(IsLocalHandleValid(pair.info));
    EXPECT_FALSE(IsLocalHandleValid(pair.bits));
    EXPECT_EQ(CurrentPictureDamage(), L"");
    SetCurrentPicture({});
    EXPECT_FALSE(CurrentPicture());
}

// Plug-ins free at their end, or at their next call, what they have handed out.
TEST(PictureTest, WhatSomebodyElseHasFreedIsNotReadAnyMore) {
    for (HLOCAL PicturePair::*const part : {&PicturePair::info, &PicturePair::bits}) {
        PicturePair pair = PairOf(HeaderOf(1, -2, 32), "toprlowr");
        SetCurrentPicture(Picture::FromPair(pair));
        EXPECT_TRUE(CurrentPicture().IsThere());
        EXPECT_EQ(CurrentPicture().Width(), 1);
        EXPECT_TRUE(FreeLocalHandle(pair.*part));
        EXPECT_FALSE(CurrentPicture());
    }
    PicturePair pair = PairOf(HeaderOf(1, -2, 32), "toprlowr");
    const Picture kept = Picture::FromPair(pair);
    EXPECT_TRUE(FreeLocalHandle(pair.bits));
    EXPECT_FALSE(kept.IsThere());
    EXPECT_FALSE(SavePictureFile(kept, L"gone.bmp", {}, 0));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_DATA));
}

TEST(PictureTest, APairIsPutRightOrRefusedAndFreed) {
    PicturePair pair = PairOf(HeaderOf(1, 2, 24) + "more", "BGRbgr");  // rows without padding
    Picture picture = Picture::FromPair(pair);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture.View().Row(0)[0], 'b');
    EXPECT_FALSE(IsLocalHandleValid(pair.bits));

    const HLOCAL one = Movable(64);
    for (const PicturePair refused :
         {PairOf(HeaderOf(1, 2, 24), "BGR"), PairOf("head", "BGR_"), PicturePair{one, one},
          PicturePair{nullptr, Movable(4)}, PicturePair{Movable(40), nullptr}}) {
        EXPECT_FALSE(Picture::FromPair(refused));
        EXPECT_FALSE(IsLocalHandleValid(refused.info));
        EXPECT_FALSE(IsLocalHandleValid(refused.bits));
    }
}

TEST(DIBToPictureTest, MakesPicturesThatOwnTheirBitmap) {
    const std::string info = HeaderOf(2, 2, 32), bits(16, 'x');
    const UniqueScreenDc screen(GetDC(nullptr));
    IPicture* picture = nullptr;
    ASSERT_TRUE(DIBToPicture(screen.Get(), {info.data(), bits.data()}, &picture));
    OLE_HANDLE handle = 0;
    EXPECT_EQ(picture->get_Handle(&handle), S_OK);
    const auto bitmap = reinterpret_cast<HBITMAP>(static_cast<ULONG_PTR>(handle));
    EXPECT_EQ(GetObjectType(bitmap), static_cast<DWORD>(OBJ_BITMAP));
    picture->Release();
    EXPECT_EQ(GetObjectType(bitmap), 0u);
}

}  // namespace
}  // namespace tessary
