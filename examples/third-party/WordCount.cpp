// 词频.统计: counts the words of texts and of UTF-8 byte sets. A word is a run
// of word characters; case is kept, so "Word" and "word" are two words.
#include <cstdint>
#include <new>

#include <zel/zel.h>

namespace {

// The table owns its keys (clones made by MCloneText, freed by zel_free);
// the value word is the count.
struct Counts {
    CText2PtrHashmap words{64};
    int total = 0;
    Counts() { words.SetIsNeedFreeKey(1); }
};

// ASCII letters and digits, and every character from U+00C0 on except the
// general and CJK punctuation blocks and the full-width ASCII punctuation.
bool IsWordChar(wchar_t c) {
    if (c < 0x80) return (c >= L'0' && c <= L'9') || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
    if (c < 0xC0 || (c >= 0x2000 && c <= 0x206F) || (c >= 0x3000 && c <= 0x303F)) return false;
    return !(c >= 0xFF00 && c <= 0xFF0F) && !(c >= 0xFF1A && c <= 0xFF20);
}

void CountWord(Counts* counts, wchar_t* word) {
    if (HashKV::KV* kv = counts->words.GetKV(word)) {
        // Set would replace the stored key too; only the count changes here.
        counts->words.KV_SetValue(kv, reinterpret_cast<void*>(intptr_t(counts->words.KV_GetValue(kv)) + 1));
    } else {
        wchar_t* key = MCloneText(word);
        if (!key) return;
        if (!counts->words.Set(key, reinterpret_cast<void*>(intptr_t(1)))) {
            zel_free(key);
            return;
        }
    }
    ++counts->total;
}

void CountWords(Counts* counts, const wchar_t* text) {
    if (!counts || !text) return;
    CMString word;
    for (const wchar_t* p = text;; ++p) {
        if (*p && IsWordChar(*p)) {
            word.AddChar(*p);
            continue;
        }
        if (word.GetLength() > 0) CountWord(counts, const_cast<wchar_t*>(word.GetText()));
        word.SetText(L"");
        if (!*p) break;
    }
}

}  // namespace

ZEL_EXPORT Counts* _WordCount_GetData(ZelObject* obj) { return static_cast<Counts*>(GetDataItemData(obj, 1, 0)); }

ZEL_EXPORT void WordCount_Init(ZelObject* obj) { SetDataItemData(obj, 1, 0, new (std::nothrow) Counts()); }

ZEL_EXPORT void WordCount_Free(ZelObject* obj) {
    delete _WordCount_GetData(obj);
    SetDataItemData(obj, 1, 0, nullptr);
}

// The text stays the caller's: it is read, not kept.
ZEL_EXPORT void WordCount_AddText(ZelObject* obj, unsigned char* text) {
    CountWords(_WordCount_GetData(obj), zel::TextChars(text));
}

ZEL_EXPORT void WordCount_AddUtf8(ZelObject* obj, unsigned char* bin) {
    int length = 0;
    unsigned char* bytes = GetBinData(bin, &length);
    if (!bytes || length <= 0) return;
    CMiniMem narrow, wide;
    char terminator = 0;  // UTF8_to_UCS reads a terminated string
    if (!narrow.Append(bytes, length) || !narrow.Append(&terminator, 1)) return;
    CountWords(_WordCount_GetData(obj), UTF8_to_UCS(reinterpret_cast<const char*>(narrow.GetData()), wide));
}

ZEL_EXPORT int WordCount_CountOf(ZelObject* obj, unsigned char* word) {
    Counts* counts = _WordCount_GetData(obj);
    void* value = nullptr;
    wchar_t* key = zel::TextChars(word);
    return counts && key && counts->words.Get(key, &value) ? int(intptr_t(value)) : 0;
}

ZEL_EXPORT int WordCount_GetDistinct(ZelObject* obj) {
    Counts* counts = _WordCount_GetData(obj);
    return counts ? counts->words.GetCount() : 0;
}

ZEL_EXPORT int WordCount_GetTotal(ZelObject* obj) {
    Counts* counts = _WordCount_GetData(obj);
    return counts ? counts->total : 0;
}

// The most frequent word; of equal counts the one first in code-unit order.
// A new text owned by the runtime; the empty text when nothing was counted.
ZEL_EXPORT unsigned char* WordCount_Top(ZelObject* obj) {
    Counts* counts = _WordCount_GetData(obj);
    if (!counts) return zel::EmptyText();
    wchar_t* best = nullptr;
    int bestCount = 0;
    HashKV_iterator it(&counts->words);
    void *key, *value;
    for (it.reset(); it.GetKeyValue(&key, &value); it.skip()) {
        int n = int(intptr_t(value));
        auto* word = static_cast<wchar_t*>(key);
        if (n > bestCount || (n == bestCount && mystrcmp(word, best) < 0)) best = word, bestCount = n;
    }
    return best ? zel::NewText(best) : zel::EmptyText();
}

ZEL_EXPORT void WordCount_Clear(ZelObject* obj) {
    if (Counts* counts = _WordCount_GetData(obj)) {
        counts->words.RemoveAll();
        counts->total = 0;
    }
}

// A static method: whether a text is a single word.
ZEL_EXPORT int WordCount_IsWord(unsigned char* text) {
    const wchar_t* p = zel::TextChars(text);
    if (!p || !*p) return 0;
    for (; *p; ++p)
        if (!IsWordChar(*p)) return 0;
    return 1;
}

using namespace zel;

static tagParamItem kText[] = {Param(L"文本", L"_s")};
static tagParamItem kBytes[] = {Param(L"字节集", L"_bn", L"UTF-8 编码的文本")};
static tagParamItem kWord[] = {Param(L"单词", L"_s")};
static tagMethodItem kMethods[] = {
    Method(L"添加文本", L"", kText, WordCount_AddText, L"统计文本中的单词"),
    Method(L"添加字节集", L"", kBytes, WordCount_AddUtf8, L"统计 UTF-8 字节集中的单词"),
    Method(L"取次数", L"_i", kWord, WordCount_CountOf, L"取得单词出现的次数"),
    Getter(L"单词数", L"_i", WordCount_GetDistinct, L"不同单词的个数"),
    Getter(L"总数", L"_i", WordCount_GetTotal, L"统计过的单词总数"),
    Method(L"最常见", L"_s", WordCount_Top, L"出现次数最多的单词"),
    Method(L"清空", L"", WordCount_Clear),
    Static(L"是单词", L"_b", kText, WordCount_IsWord, L"文本是否恰为一个单词"),
};
static tagElementItem kElements[] = {HiddenState()};
ZEL_RECORD(tagTBaseTypeInfo, g_info_WordCount) = ClassRecord(L"词频.统计", L"单词计数器", kMethods, kElements);
ZEL_REGISTER_CLASS(g_info_WordCount);
