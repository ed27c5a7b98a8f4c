# Recipe: edit a text in place. 替换 changes nothing, so a replacement is a
# search, a delete and an insert.
t = new 工具.文本类
t.文本 = "the cat sat on the mat"
at = t.查找("cat", 0)
print at
# 删除 removes (start + count) units, so to remove n units at p pass the
# count n - p: here 3 - 4, which is -1.
t.删除(at, -1)
t.插入(at, "dog")
print t.文本
# Search backwards from the end with a start of -1 (positions are unsigned).
last = t.倒找("the", -1)
print last
# Scripts have no arithmetic: the count for 3 units at 15 is written out.
t.删除(last, -12)
t.插入(last, "a")
print t.文本, t.取长度()
print t.替换("dog", 0), t.文本
