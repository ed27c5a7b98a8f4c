# Recipe: a set of distinct words with 工具.映射表. Text objects match by
# content; 键是否存在 tests without adding (取键值 would add the key).
seen = new 工具.映射表
w = new 工具.文本类
w.文本 = "apple"
seen.置键值(w, w)
w = new 工具.文本类
w.文本 = "pear"
seen.置键值(w, w)
w = new 工具.文本类
w.文本 = "apple"
print seen.键是否存在(w)
seen.置键值(w, w)
# 取个数 is declared logical: the count prints beside 真.
print seen.取个数()
n = new 工具.整数类
n.整数 = 7
print seen.键是否存在(n)
