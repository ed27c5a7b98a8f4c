# 工具.文本类: a mutable text; positions count code units from 0.
t = new 工具.文本类
print t.取长度()
print t.文本
t.添加("ab")
t.插入(0, "x")
print t.文本
t.插入(3, "y")
print t.文本
expect error t.插入(5, "z")
expect error t.插入(-1, "z")
print t.文本

# 删除 removes (start + count) units, capped at the end of the text.
t.文本 = "abcdef"
t.删除(2, 2)
print t.文本
t.文本 = "abcdef"
t.删除(0, 2)
print t.文本
t.文本 = "abcdef"
t.删除(4, 1)
print t.文本
t.文本 = "abcdef"
t.删除(1, -1)
print t.文本
expect error t.删除(9, 1)
print t.文本

# Starts are unsigned: -1 is past any end, and 倒找 from -1 searches it all.
t.文本 = "abcb"
print t.查找("b", 0)
print t.查找("b", 2)
print t.查找("b", 4)
print t.倒找("b", -1)
print t.倒找("b", 2)
print t.倒找("b", 0)
t.文本 = "abc"
print t.查找("", 2)
print t.查找("", 4)

# 比较 gives the length difference when one text is a prefix of the other.
expect t.比较("abd") < 0
print t.比较("ab")
print t.比较("abcde")
print t.比较("abc")
print t.相等于("abc")
print t.相等于("ab")

# 替换 changes nothing.
print t.替换("a", 1)
print t.文本
print t.取长度()

# 到文本 is declared logical: the new text it hands back reads as true.
expect t.到文本() != 假
