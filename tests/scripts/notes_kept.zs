# Behaviour the class notes tell and the other scripts do not pin.

# 工具.文本文件: in a multibyte encoding 写 writes what the byte set's first
# word reads as text, nothing for a byte set; 关闭 belongs to 工具.文件 and
# leaves the text file open until the object goes.
t = new 工具.文本文件
print t.打开("notes_kept.txt", 5, 2)
print t.写(x"616263")
t.关闭()
print t.取读写位置()
t = null
b = new 工具.二进制文件流
print b.读入文件("notes_kept.txt", 1)
# In a wide encoding it writes one byte per non-zero word from word 1 on,
# from byte 4 of the block: here 2 bytes, 01 00, behind the 2-byte signature
# place of a new file.
t = new 工具.文本文件
print t.打开("notes_kept.txt", 5, 0)
print t.写(x"616263")
t = null
print b.读入文件("notes_kept.txt", 1)

# 删除 with the count n - p removes n units at p.
s = new 工具.文本类
s.文本 = "abcdefgh"
s.删除(5, -3)
print s.文本

# New boxed values hold zero; a logical keeps the word it is given.
print (new 工具.双精度类).小数, (new 工具.逻辑类).逻辑
l = new 工具.逻辑类
l.逻辑 = 2
print l.逻辑

# A stack pops nothing when empty and has no top.
k = new 工具.栈
k.删除()
print k.取项目(), k.取项目数()
