# The boxed values: each object wraps one basic value behind a property.
i = new 工具.整数类
print i.整数
i.整数 = -2147483648
print i.整数
i.整数 = 42
expect i.整数 == 42

d = new 工具.双精度类
d.小数 = 0.1
print d.小数
d.小数 = -1.5e300
print d.小数
# A literal is rounded once, to the nearest double.
d.小数 = 92222228E18
print d.小数

b = new 工具.逻辑类
b.逻辑 = 真
print b.逻辑
b.逻辑 = 假
print b.逻辑

# A byte-set object keeps its own copy of the last byte set assigned; until
# one is assigned it has none (null).
s = new 工具.字节集类
print s.取数据长度()
print s.字节集
s.字节集 = x"616263"
print s.取数据长度()
print s.字节集
s.字节集 = x"00ff"
print s.字节集
s.字节集 = null
print s.字节集
s.字节集 = x""
print s.取数据长度()
