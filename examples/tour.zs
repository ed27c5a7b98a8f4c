
# ---- Boxed values, text and date-time ----------------------------------
# A basic value boxed in an object can stand where an object is wanted.
n = new 工具.整数类
n.整数 = 42
print n.整数
bytes = new 工具.字节集类
bytes.字节集 = x"48690a"
print bytes.取数据长度()

# 工具.文本类 is a text you can change in place.
text = new 工具.文本类
text.添加("world")
text.插入(0, "hello, ")
print text.文本
print text.查找("o", 5)
print text.倒找("o", -1)

# A new date-time holds the current local time; its fields can be set freely.
day = new 工具.日期时间类
day.年 = 2024
day.月 = 3
day.日 = 5
print day.到文本()
