# 工具.映射表: keys and values are objects. Wrapped integers, doubles,
# logicals, texts and byte sets match by value, other objects by identity.
# 取个数 is declared logical and shows the count beside 真.
m = new 工具.映射表
print m.取个数()
seven = new 工具.整数类
seven.整数 = 7
print m.键是否存在(seven)

# 取键值 adds an absent key (with no value) and hands nothing back.
print m.取键值(seven, null)
print m.取个数(), m.键是否存在(seven)

# Two integer objects holding 7 are one key; 8 is another.
other7 = new 工具.整数类
other7.整数 = 7
eight = new 工具.整数类
eight.整数 = 8
v = new 工具.列表
m.置键值(other7, v)
print m.取个数(), m.键是否存在(other7), m.键是否存在(eight)
m.置键值(eight, new 工具.列表)
m.置键值(eight, new 工具.列表)
print m.取个数()
print m.取键值(eight, v)

# Texts: equal texts are one key whatever the object; different texts,
# of any lengths, are different keys.
t = new 工具.映射表
a = new 工具.文本类
a.文本 = "a"
ab = new 工具.文本类
ab.文本 = "ab"
ab2 = new 工具.文本类
ab2.文本 = "ab"
b = new 工具.文本类
b.文本 = "b"
t.置键值(a, a)
t.置键值(ab, ab)
t.置键值(b, b)
t.置键值(ab2, b)
print t.取个数(), t.键是否存在(ab2)

# Doubles, logicals and byte sets by value (one class per table: keys of
# different classes are compared by identity, which orders them unrelated
# to their values).
w = new 工具.映射表
d = new 工具.双精度类
d.小数 = 1.5
w.置键值(d, d)
d2 = new 工具.双精度类
d2.小数 = 1.5
print w.键是否存在(d2)
d2.小数 = 2.5
print w.键是否存在(d2)
g = new 工具.映射表
yes = new 工具.逻辑类
yes.逻辑 = 真
g.置键值(yes, yes)
no = new 工具.逻辑类
no.逻辑 = 假
print g.键是否存在(no)
no.逻辑 = 真
print g.键是否存在(no)
n = new 工具.映射表
bytes = new 工具.字节集类
bytes.字节集 = x"616263"
n.置键值(bytes, bytes)
same = new 工具.字节集类
same.字节集 = x"616263"
print n.键是否存在(same)
same.字节集 = x"616264"
print n.键是否存在(same)
same.字节集 = x"6162"
n.置键值(same, same)
print n.取个数()

# Date-time keys are never less than each other: all of them are one key.
dt = new 工具.映射表
dt.置键值(new 工具.日期时间类, v)
dt.置键值(new 工具.日期时间类, v)
print dt.取个数()

# Other objects by identity: the same object twice is one key.
p = new 工具.映射表
k1 = new 工具.列表
k2 = new 工具.列表
p.置键值(k1, seven)
p.置键值(k2, seven)
p.置键值(k1, eight)
print p.取个数(), p.键是否存在(k2), p.键是否存在(new 工具.列表)
