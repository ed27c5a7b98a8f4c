# 工具.内存流: values are appended packed and little-endian, with no tags;
# reading starts at its own position, which writes never move.
s = new 工具.内存流
print s.写整数(7)
print s.写文本("ab")
print s.写小数(1.5)
print s.取长度()
print s.取数据()
print s.读整数(), s.读文本(), s.读小数()

# Past the end the reads give their sentinels and stay put.
print s.读整数(), s.读小数(), s.读逻辑()
s.写逻辑(5)
print s.读逻辑()
print s.保留()

# A byte set is written whole (two words, the count, the bytes) but reading
# advances by the count alone.
b = new 工具.内存流
b.写字节集(x"6869")
print b.取数据()
print b.读字节集()
print b.读整数()

# 初始化数据 replaces the bytes and keeps the position.
print b.初始化数据(x"0100000002000000")
print b.读整数()
print b.取长度()

# Malformed data: a text without its zero unit reads what is there, a byte
# set whose count runs past the end gives the bytes that are there.
t = new 工具.内存流
t.初始化数据(x"61000000")
print t.读文本()
print t.读文本()
u = new 工具.内存流
u.初始化数据(x"00000000010000006400000041")
print u.读字节集()
print u.读整数()

# 工具.内存输入流 reads what it was given; 工具.内存输出流 only writes.
i = new 工具.内存输入流
print i.初始化数据(x"2a000000ffffffff")
print i.读整数(), i.读整数(), i.读整数()
o = new 工具.内存输出流
o.写文本("")
o.写字节集(null)
print o.取长度(), o.取数据()

# Other classes serialize through the same slots.
p = new 工具.坐标点
p.初始化(3, -4)
out = new 工具.内存输出流
print p.序列化(out)
in = new 工具.内存输入流
in.初始化数据(out.取数据())
q = new 工具.坐标点
print q.反序列化(in)
print q.横坐标, q.纵坐标
