# 工具.栈: last in, first out. The stack keeps the pointers as pushed and
# takes no reference: what it holds must be kept alive by its owner.
s = new 工具.栈
print s.是否为空(), s.取项目数(), s.取项目()

# An empty stack pops nothing and has no top.
s.删除()
print s.取项目数(), s.取项目()

a = new 工具.整数类
a.整数 = 1
b = new 工具.整数类
b.整数 = 2
s.加入(a)
s.加入(b)
print s.取项目().整数
s.删除()
print s.取项目().整数, s.取项目数()
s.删除()
print s.是否为空()

# The stack cannot be stored: both directions report failure.
print s.序列化(null), s.反序列化(null)
