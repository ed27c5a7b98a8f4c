# 工具.列表: objects by zero-based position. The list holds one reference on
# every item it stores, so items made inside a call outlive the statement.
l = new 工具.列表
print l.取项目数(), l.是否为空(), l.取项目(0)

a = new 工具.整数类
a.整数 = 1
b = new 工具.整数类
b.整数 = 2
x = new 工具.整数类
x.整数 = 9

# 加到尾部 假 puts the item in front.
l.加入项目(a, 真)
l.加入项目(b, 假)
print l.取项目(0).整数, l.取项目(1).整数

# Insert before a position; the count appends; beyond it or below 0, nothing.
l.插入项目(2, new 工具.整数类)
l.取项目(2).整数 = 3
l.插入项目(1, x)
l.插入项目(5, x)
l.插入项目(-1, x)
print l.取项目数(), l.取项目(0).整数, l.取项目(1).整数, l.取项目(2).整数, l.取项目(3).整数
print l.取项目(4), l.取项目(-1)

# Remove at a position; the count and negatives change nothing.
l.删除项目(4)
l.删除项目(-1)
l.删除项目(1)
print l.取项目数(), l.取项目(0).整数, l.取项目(1).整数, l.取项目(2).整数

# 置项目 at the count appends the object; beyond the count, nothing.
l.置项目(3, x)
l.置项目(5, b)
print l.取项目数(), l.取项目(3).整数
# Replacing keeps the reference the list held on the replaced item (on
# purpose); here the replaced item is null, so nothing is held over.
l.加入项目(null, 真)
l.置项目(4, a)
print l.取项目数(), l.取项目(4).整数
expect l.取项目(3) == x

# The same object may sit at several positions, each with its reference.
l.删除项目(0)
l.删除项目(0)
print l.取项目数(), l.取项目(0).整数, l.取项目(1).整数, l.取项目(2).整数

# Nothing is serialized; reading back empties the list.
print l.序列化(null)
print l.反序列化(null)
print l.取项目数(), l.是否为空()

l.加入项目(new 工具.整数类, 真)
l.加入项目(x, 真)
l.清空()
print l.取项目数(), x.整数

# Items still stored when the list goes are released with it.
k = new 工具.列表
k.加入项目(new 工具.文本类, 真)
k.取项目(0).添加("kept by the list")
print k.取项目(0).文本
