# Recipe: colours and fonts to text and back.
c = new 工具.颜色
c.到对象("255, 128, 0")
print c.红, c.绿, c.蓝
print c.到文本()
# Components are bytes: 256 wraps to 0.
c.蓝 = 256
print c.蓝
# 比较 weighs blue most: orange is below a dark blue.
blue = new 工具.颜色
blue.初始化(0, 0, 10)
print c.比较(blue), blue.比较(c)
f = new 工具.字体
f.名称 = "宋体"
f.尺寸 = 12
print f.到文本()
g = new 工具.字体
g.到对象(f.到文本())
print g.名称, g.尺寸, g.风格, g.字重
# 比较 answers 0 only for different names with equal attributes.
print f.比较(g)
g.名称 = "黑体"
print f.比较(g)
