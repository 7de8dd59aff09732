#include "quillon9/values/binary_data.h"

#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <utility>
#include <vector>

#include "quillon9/values/base64.h"
#include "support/expect_failure.h"

namespace Quillon9 {
namespace {

std::string TextOf(CBinaryData const& value) {
  return std::string(reinterpret_cast<char const*>(value.GetData()), value.GetLength());
}

unsigned char* NewBytes(char const* text) {
  auto* const bytes = new unsigned char[std::strlen(text)];
  std::memcpy(bytes, text, std::strlen(text));
  return bytes;
}

TEST(BinaryData, CopySharesUntilOneIsChanged) {
  CBinaryData const first("abc");
  CBinaryData second(first);
  CBinaryData third;
  third = second;
  EXPECT_EQ(first.GetData(), third.GetData());
  second.Append("def");
  third[0] = 'x';
  EXPECT_EQ("abc", TextOf(first));
  EXPECT_EQ("abcdef", TextOf(second));
  EXPECT_EQ("xbc", TextOf(third));
}

TEST(BinaryData, MissingAndEmptyHolderAreDifferent) {
  CBinaryData missing;
  CBinaryData const empty("");
  EXPECT_EQ(nullptr, missing.GetData());
  EXPECT_NE(nullptr, empty.GetData());
  EXPECT_TRUE(missing == CBinaryData());
  EXPECT_TRUE(missing != empty);
  EXPECT_TRUE(empty != missing);
  EXPECT_TRUE(CBinaryData("ab") == CBinaryData("ab"));
  EXPECT_TRUE(CBinaryData("ab") != CBinaryData("ac"));
  EXPECT_TRUE(CBinaryData("ab") != CBinaryData("abc"));
  EXPECT_EQ("", missing.GetAsHexString() + missing.GetAsBase64());
  missing.Append(nullptr, 0);
  EXPECT_TRUE(missing == empty);
}

TEST(BinaryData, AppendsEveryKindAndItself) {
  CBinaryData value;
  value.Append("ab");
  value.Append(std::string("cd\0ef", 5));
  value.Append('g');
  value.Append(static_cast<unsigned char>(0xFF));
  value.Append(CBinaryData("h"));
  EXPECT_EQ("abcdg\xFFh", TextOf(value));

  CBinaryData doubled(NewBytes("abc"), 3, true);  // a full buffer: appending has to grow it
  CBinaryData const shared = doubled;
  doubled.Append(doubled);
  doubled.Append(doubled.GetData() + 2, 4);
  EXPECT_EQ("abcabccabc", TextOf(doubled));
  for (int i = 0; i < 12; ++i) doubled.Append(doubled);
  EXPECT_EQ(10u << 12, doubled.GetLength());
  EXPECT_EQ("abcabccabcabc", TextOf(doubled).substr(doubled.GetLength() - 10) + "abc");
  doubled.SetBuffer(doubled.GetData() + 1, 2);
  EXPECT_EQ("bc", TextOf(doubled));
  EXPECT_EQ("abc", TextOf(shared));
}

TEST(BinaryData, IndexReachesOneBehindTheEnd) {
  for (bool const full : {false, true}) {
    CBinaryData value = full ? CBinaryData(NewBytes("abc"), 3, true) : CBinaryData("abc");
    EXPECT_EQ(0, std::as_const(value)[3]);
    value[3] = 'd';
    EXPECT_EQ("abc", TextOf(value));
    EXPECT_FAILURE(CQnException, "Index Out of range [4]", value[4]);
    EXPECT_FAILURE(CQnException, "Index Out of range [4]", std::as_const(value)[4]);
  }
  CBinaryData missing;
  EXPECT_FAILURE(CQnException, "Index Out of range [0]", missing[0]);
}

TEST(BinaryData, ReleaseDataLeavesTheOtherOwnerItsBytes) {
  CBinaryData first("abc");
  CBinaryData const second = first;
  unsigned char* const released = first.ReleaseData();
  EXPECT_NE(second.GetData(), released);
  EXPECT_EQ(0, std::memcmp(released, "abc", 3));
  EXPECT_TRUE(first == CBinaryData());
  EXPECT_EQ(nullptr, first.ReleaseData());
  CBinaryData adopted(released, 3, true);
  EXPECT_EQ(released, adopted.GetData());
  EXPECT_EQ(released, adopted.ReleaseData());
  delete[] released;
}

TEST(BinaryData, AssignmentToItselfEmptiesAndMovingHandsOver) {
  CBinaryData value("abc");
  unsigned char const* const bytes = value.GetData();
  CBinaryData moved(std::move(value));
  value = std::move(moved);
  EXPECT_EQ(bytes, value.GetData());
  CBinaryData const& same = value;
  value = same;
  EXPECT_TRUE(value == CBinaryData());
}

TEST(BinaryData, RefusesWhatNoLengthHolds) {
  unsigned long const tooLong = 4294967296;
  unsigned char byte = 0;
  CBinaryData value("abc");
  EXPECT_FAILURE(CQnException, "The data is too long [4294967296 bytes]", CBinaryData(&byte, tooLong, false));
  EXPECT_FAILURE(CQnException, "The data is too long [4294967296 bytes]",
                 CBinaryData(new unsigned char[1], tooLong, true));
  EXPECT_FAILURE(CQnException, "The data is too long [4294967298 bytes]", value.Append(&byte, tooLong - 1));
  EXPECT_FAILURE(CQnException, "The data is too long [4294967296 bytes]", value.SetBuffer(&byte, tooLong));
  EXPECT_FAILURE(CQnException, "The data is null but its length is 1", value.Append(nullptr, 1));
  EXPECT_EQ("abc", TextOf(value));
}

TEST(BinaryData, HolderCountsItsReferences) {
  auto* const holder = new CBinaryData::CDataHolder(NewBytes("abc"), 3, true);
  holder->AddRef();
  unsigned char const byte = 'd';
  EXPECT_FAILURE(CQnException, "Failed to append. [RefCount=2]", holder->Append(&byte, 1));
  EXPECT_FAILURE(CQnException, "Failed to release data. [RefCount=1]", holder->Release(true));
  holder->Append(&byte, 1);
  EXPECT_EQ(holder, holder->GetExclusiveCopy());
  unsigned char* const bytes = holder->GetData();
  holder->Release(true);
  EXPECT_EQ(0, std::memcmp(bytes, "abcd", 4));
  delete[] bytes;
}

TEST(BinaryData, ThreadsShareOneHolder) {
  CBinaryData const source("abc");
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([own = source] {
      for (int i = 0; i < 2000; ++i) {
        CBinaryData copy = own;
        copy.Append('d');
        EXPECT_EQ("abcd", TextOf(copy));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ("abc", TextOf(source));
}

struct Row {
  std::string text;
  std::string other;
};

TEST(BinaryData, HexDigits) {
  CBinaryData value;
  value.SetAsHexString("0aFF");
  EXPECT_EQ("0AFF", value.GetAsHexString());
  value.SetAsHexString("");
  EXPECT_TRUE(value == CBinaryData(""));
  Row const bad[] = {{"ABC", ""}, {"0G", "G]"}, {"00 1", " ]"}, {"00\xE9\x30", "\xE9]"}};
  for (Row const& row : bad) {
    value.SetBuffer("left over");
    EXPECT_FAILURE(CQnException, "Invalid char in hex string [" + row.other, value.SetAsHexString(row.text.c_str()));
    EXPECT_TRUE(value == CBinaryData()) << row.text;
  }
}

TEST(BinaryData, Base64IsWrittenStrictlyAndReadLeniently) {
  std::string const oneByte("TQ=\0", 4);
  Row const written[] = {{"", ""}, {oneByte, "M"}, {"TWE=", "Ma"}, {"TWFueQ==", "Many"}, {"++//", "\xFB\xEF\xFF"}};
  for (Row const& row : written) EXPECT_EQ(row.text, CBinaryData(row.other.c_str()).GetAsBase64()) << row.other;
  Row const read[] = {{"", ""},      {"TWFu", "Man"},      {"TW Fu\n", "Man"},       {"=T=W=Fu=", "Man"},
                      {"T", ""},     {"TWFuTWE", "ManMa"}, {"\xD4\xD7\x46u", "Man"}, {"TWFu\r\nT\tWFu", "ManMan"},
                      {"TWFu!", ""}, {"TWFuTWF\vTWFu", ""}};
  for (Row const& row : read) {
    CBinaryData value;
    value.SetAsBase64(row.text.c_str());
    EXPECT_TRUE(value == CBinaryData(row.other.c_str())) << row.text;
  }
}

TEST(BinaryData, TextFormsComeBackForEveryLength) {
  CBinaryData bytes("");
  for (int length = 0; length < 300; ++length) {
    CBinaryData fromBase64;
    fromBase64.SetAsBase64(bytes.GetAsBase64().c_str());
    EXPECT_TRUE(fromBase64 == bytes) << length;
    CBinaryData fromHex;
    fromHex.SetAsHexString(bytes.GetAsHexString().c_str());
    EXPECT_TRUE(fromHex == bytes) << length;
    bytes.Append(static_cast<unsigned char>(length * 37));
  }
}

TEST(Base64, BitsAreCollectedIntoBytes) {
  CBase64 base64;
  unsigned char out[2] = {0, 0};
  int position = 0;
  base64.Write(0xF5, 4, out, position);  // only the low four bits count
  base64.Write(0x2A, 8, out, position);
  base64.Write(3, 4, out, position);
  EXPECT_EQ(2, position);
  EXPECT_EQ(0x52, out[0]);
  EXPECT_EQ(0xA3, out[1]);
  EXPECT_FAILURE(CQnException, "Invalid bit count [9]", base64.Write(0, 9, out, position));
  int bitsRead = -1;
  EXPECT_EQ(0, CBase64().Read(6, &bitsRead, position));
  EXPECT_EQ(0, bitsRead);
}

}  // namespace
}  // namespace Quillon9
