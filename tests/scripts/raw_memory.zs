# 工具.地址 and 工具.指针 over the storage of runtime values.
b = x"00000000000000000000000000000000"
a = new 工具.地址
expect a.是否为空()
a.置为字节集地址(b)
expect a.是否为空() == 假
p = new 工具.指针
p.指向(a)
# Every width, written at the start of the byte set.
p.整数 = 16909060
print b
print p.整数
print p.短整数
print p.字节
p.字节 = 255
p.短整数 = -2
print b
print p.字节
print p.短整数
p.双精度数 = -2.5
print p.双精度数
print b
p.单精度数 = 0.5
print p.单精度数
# Stepping forward and back by the step.
p.步长 = 4
p.填充(0, 16)
p.整数 = 10
p.前进()
p.整数 = 20
p.前进()
p.整数 = 30
print b
p.后退()
print p.整数
p.移动(-1)
print p.整数
p.步长 = 1
p.前进()
print p.读字节集(6)
p.写字节集(x"aabb")
print b
# Addresses compare, offset and measure.
c = new 工具.地址
c.置为字节集地址(b)
expect a.等于(c)
c.偏移(12)
print a.取距离(c)
print a.比较(c)
print c.比较(a)
c.偏移(-12)
expect c.比较(a) == 0
# A text's characters: a wide text reads back through the pointer.
t = "ab"
a.置为文本地址(t)
p.指向(a)
p.步长 = 4
print p.整数
p.前进()
print p.整数
p.后退()
print p.读文本(10)
print p.读文本(1)
# The null address reads 0 and writes nothing.
n = new 工具.指针
expect n.是否为空()
n.整数 = 5
print n.整数
print n.双精度数
print n.读字节集(4)
print n.读文本(4)
e = new 工具.地址
e.置为字节集地址(x"")
expect e.是否为空()
print e.值
