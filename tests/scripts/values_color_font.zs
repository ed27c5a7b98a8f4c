# 工具.颜色: three bytes; setters keep the low 8 bits.
c = new 工具.颜色
print c.到文本()
c.红 = 300
print c.红
c.绿 = -1
c.蓝 = 7
print c.到文本()
c.初始化(1, 2, 3)
print c.红, c.绿, c.蓝

# Text and back, blanks trimmed; a short text keeps the rest.
d = new 工具.颜色
d.到对象(c.到文本())
expect d.比较(c) == 0
d.到对象(" 10 ,20")
print d.到文本()

# Blue weighs most.
red = new 工具.颜色
red.初始化(255, 0, 0)
blue = new 工具.颜色
blue.初始化(0, 0, 255)
print red.比较(blue)
print blue.比较(red)
print red.比较(red)

# A colour keeps nothing in a stream, and says it succeeded.
s = new 工具.内存流
print c.序列化(s)
print s.取长度()
print c.反序列化(s)

# 工具.字体: a name and six attributes; style and weight start at 90.
f = new 工具.字体
print f.名称
print f.编码, f.尺寸, f.字族, f.风格, f.下划线, f.字重
print f.到文本()
f.名称 = "宋体"
f.编码 = 134
f.尺寸 = -12
f.下划线 = 真
f.字重 = 700
print f.到文本()

# Text and back keeps the name and the attributes.
g = new 工具.字体
g.到对象(f.到文本())
print g.名称
print g.到文本()
g.到对象("黑体, 1")
print g.到文本()

# Equal names compare as -1; different names with equal attributes as 0.
a = new 工具.字体
b = new 工具.字体
print a.比较(b)
a.名称 = "A"
b.名称 = "B"
print a.比较(b)
b.尺寸 = 10
print a.比较(b)
print f.序列化(s)
print s.取长度()
print f.反序列化(s)
